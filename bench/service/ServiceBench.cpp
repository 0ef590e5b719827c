#include "bench/support/RatioTable.h"

#include "service/CaldraClient.h"
#include "service/core/Envelope.h"
#include "service/core/RecordDecoder.h"
#include "service/core/RecordEncoder.h"
#include "tests/service/support/LoopbackServer.h"

#include <curl/curl.h>

#include <QCoreApplication>
#include <QJsonDocument>

using namespace Qt::StringLiterals;
using namespace caldra;
using caldra::tests::Answer;
using caldra::tests::LoopbackServer;
using caldra::tests::ReceivedRequest;

namespace {

constexpr int sequentialCalls = 10'000;

LoopbackServer *server = nullptr; // for as long as the application lives

Answer status(const ReceivedRequest &)
{
    return Answer::json(R"({"data":{"status":"operational","updatedAt":"2024-01-01T00:00:00Z","components":[)"
                        R"({"id":"c1","key":"api","name":"API","status":"operational","sortOrder":1}]}})");
}

void libraryCalls(benchmark::State &state)
{
    const CaldraClient client(
        CaldraConfiguration{u"the-key"_s, u"org"_s, ServiceEndpoints::onHost(server->host()), {}, 30});
    for (auto _ : state) {
        const SystemStatusResponse answer = client.systemStatus.overallStatus().result();
        if (answer.components.size() != 1) {
            state.SkipWithError("wrong answer");
        }
    }
}

std::size_t append(char *bytes, std::size_t size, std::size_t count, void *body)
{
    static_cast<std::string *>(body)->append(bytes, size * count);
    return size * count;
}

void curlCalls(benchmark::State &state)
{
    const std::string url =
        server->url(u"/systemStatusApi/v1/organizations/org/status"_s).toEncoded().toStdString();
    CURL *handle = curl_easy_init();
    curl_slist *headers = nullptr;
    for (const char *header :
         {"Accept: application/json", "Authorization: Bearer the-key", "X-API-Key: the-key"}) {
        headers = curl_slist_append(headers, header);
    }
    std::string body;
    curl_easy_setopt(handle, CURLOPT_URL, url.c_str());
    curl_easy_setopt(handle, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
    for (auto _ : state) {
        body.clear();
        if (curl_easy_perform(handle) != CURLE_OK || body.empty()) {
            state.SkipWithError("wrong answer");
        }
    }
    curl_slist_free_all(headers);
    curl_easy_cleanup(handle);
}

const QByteArray &releaseList()
{
    static const QByteArray text = [] {
        DistributionReleasesResponse list{u"1"_s, u"talvex-llm-trainer"_s, {}};
        for (int index = 0; index < 10'000; ++index) {
            const QString version = u"1.%1.0"_s.arg(index);
            const QString file = u"Trainer-%1.zip"_s.arg(version);
            const DistributionArtifact artifact{DistributionPlatform::macos,
                                                file,
                                                u"https://files.example/talvex-llm-trainer/"_s + file,
                                                123456789 + index,
                                                u"application/zip"_s,
                                                QString(64, u'a'),
                                                version,
                                                QString::number(index),
                                                u"14.0"_s,
                                                DistributionArchitecture::arm64,
                                                DistributionArtifactPurpose::update,
                                                true};
            const QString notes =
                u"Faster data preparation, and a clearer message when a folder is missing.\n"_s;
            list.releases.push_back({u"release-%1"_s.arg(index),
                                     version,
                                     DistributionChannel::stable,
                                     QString::number(index),
                                     notes,
                                     false,
                                     u"2024-01-01T00:00:00Z"_s,
                                     u"2024-01-01T00:00:00Z"_s,
                                     {artifact, artifact}});
        }
        return QByteArray("{\"data\":" + encodeJSON(list) + '}');
    }();
    return text;
}

void libraryDecode(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(decodeJSON<Envelope<DistributionReleasesResponse>>(releaseList()));
    }
}

void qtParse(benchmark::State &state)
{
    for (auto _ : state) {
        benchmark::DoNotOptimize(QJsonDocument::fromJson(releaseList()));
    }
}

BENCHMARK(libraryCalls)->Iterations(sequentialCalls)->Repetitions(5)->UseRealTime();
BENCHMARK(curlCalls)->Iterations(sequentialCalls)->Repetitions(5)->UseRealTime();
BENCHMARK(libraryDecode);
BENCHMARK(qtParse);

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    LoopbackServer loopback(&status);
    server = &loopback;
    curl_global_init(CURL_GLOBAL_DEFAULT);
    std::printf("release list: %lld bytes\n", static_cast<long long>(releaseList().size()));
    using zorel::bench::Row;
    zorel::bench::RatioTable table({
        {"10,000 sequential calls, one call", "libraryCalls", "curlCalls", Row::Promise::fasterAtLeast, 0.5},
        {"decode 10,000 releases, against Qt's parse", "libraryDecode", "qtParse", Row::Promise::timeAtMost,
         2},
    });
    return table.run(argc, argv);
}
