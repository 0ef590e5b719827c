#include "service/CaldraClient.h"
#include "service/core/RecordDecoder.h"
#include "service/core/RecordEncoder.h"

#include <QtTest/QtTest>

#include <QDirIterator>

using namespace Qt::StringLiterals;
using namespace caldra;

namespace {

template <class... Records>
struct RecordList
{};

using AllRecords = RecordList<
    HealthResponse, DistributionArtifact, DistributionRelease, DistributionLatestPointer,
    DistributionApplication, DistributionApplicationsResponse, DistributionApplicationResponse,
    DistributionReleasesResponse, DistributionReleaseResponse, DistributionLatestResponse,
    DistributionIconResponse, PublishReleaseRequest, UpdateReleaseRequest, DistributionReleaseFilter,
    DistributionLookup, DistributionIconQuery, SupportTicket, SupportTicketComment,
    CreateSupportTicketRequest, CreateSupportCommentRequest, SupportTicketFilter, SupportTicketsResponse,
    SupportTicketResponse, SupportCommentsResponse, SupportCommentResponse, CareersPosting,
    CareersTemplateField, CareersTemplateSection, CareersApplicationTemplate, CareersApplication,
    SubmitCareersApplicationRequest, CareersApplicationFilter, CareersPostingsResponse,
    CareersPostingResponse, CareersTemplateResponse, CareersApplicationsResponse, CareersApplicationResponse,
    FeatureFlag, EvaluateFlagsRequest, FeatureFlagsResponse, FlagEvaluationResponse, LegalPolicy,
    LegalPolicySection, CreateLegalPolicyRequest, UpdateLegalPolicyRequest, LegalSectionRequest,
    LegalPoliciesResponse, LegalPolicyResponse, LegalSectionResponse, NewsroomCategory, NewsroomPost,
    NewsroomPostRequest, NewsroomPostFilter, NewsroomPostOptions, NewsroomCategoriesResponse,
    NewsroomPostsResponse, NewsroomPostResponse, SalesSubmission, SalesSubmissionRequest, SalesComment,
    SalesCommentRequest, SalesSubmissionFilter, SalesSubmissionsResponse, SalesSubmissionResponse,
    SalesCommentsResponse, SalesCommentResponse, SystemComponent, CreateSystemComponentRequest,
    UpdateSystemComponentRequest, SystemStatusResponse, SystemComponentResponse>;

/// Gives every field of a record a value of its own, different from the others and from the default.
class Filler
{
public:
    template <class T>
    void fill(T &value)
    {
        ++m_count;
        if constexpr (std::is_same_v<T, QString>) {
            value = u"\u00e4 \"%1\"\n"_s.arg(m_count);
        } else if constexpr (std::is_same_v<T, bool>) {
            value = true;
        } else if constexpr (std::is_same_v<T, qint64>) {
            value = 9007199254740993 + m_count; // beyond what a double can tell apart
        } else if constexpr (std::is_same_v<T, double>) {
            value = m_count + 0.1;
        } else if constexpr (std::is_same_v<T, JSONValue>) {
            value = JSONValue::Object{{u"k"_s, JSONValue::Array{m_count, nullptr, true, 0.5, u"t"_s}}};
        } else if constexpr (WireEnumeration<T>) {
            const auto texts = wireTexts(T{});
            value = texts[std::size_t(m_count) % texts.size()].value;
        } else if constexpr (isOptionalField<T>) {
            fill(value.emplace());
        } else if constexpr (isListField<T>) {
            value.resize(2);
            fill(value[0]);
            fill(value[1]);
        } else if constexpr (isTextMapField<T>) {
            fill(value[u"a b"_s]);
            fill(value[u"\u00e4"_s]);
        } else {
            std::apply([&](const auto &...entry) { (fill(value.*entry.member), ...); }, T::fields);
        }
    }

private:
    int m_count = 0;
};

template <class T>
bool survives()
{
    T filled{};
    Filler().fill(filled);
    T sparse{};
    return !(filled == sparse) && decodeJSON<T>(encodeJSON(filled)) == filled &&
           decodeJSON<T>(encodeJSON(sparse)) == sparse;
}

template <class... Records>
std::vector<std::pair<const char *, bool (*)()>> checksFor(RecordList<Records...>)
{
    return {{typeid(Records).name(), &survives<Records>}...};
}

} // namespace

class RecordRoundTripTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void survivesEncodingAndDecoding_data()
    {
        QTest::addColumn<int>("index");
        const auto checks = checksFor(AllRecords());
        for (std::size_t index = 0; index < checks.size(); ++index) {
            QTest::newRow(checks[index].first) << int(index);
        }
    }

    void survivesEncodingAndDecoding()
    {
        QFETCH(int, index);
        QVERIFY(checksFor(AllRecords())[std::size_t(index)].second());
    }

    void missesNoRecord()
    {
        QDirIterator headers(QString::fromLocal8Bit(qgetenv("CALDRA_SOURCE")), {u"*.h"_s}, QDir::Files,
                             QDirIterator::Subdirectories);
        int count = 0;
        while (headers.hasNext()) {
            QFile header(headers.next());
            if (header.fileName().contains("/core/"_L1)) {
                continue;
            }
            QVERIFY(header.open(QFile::ReadOnly));
            count += int(header.readAll().count("static constexpr auto fields"));
        }
        // The core has one record that services answer with: HealthResponse.
        QCOMPARE(int(checksFor(AllRecords()).size()), count + 1);
    }
};

QTEST_GUILESS_MAIN(RecordRoundTripTest)
#include "RecordRoundTripTest.moc"
