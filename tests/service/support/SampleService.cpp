#include "tests/service/support/SampleService.h"

#include "tests/service/support/LoopbackServer.h"

namespace caldra::tests {

Answer sampleService(const ReceivedRequest &request)
{
    const QByteArray path = request.target.split('?').first();
    if (path.endsWith("/applications")) {
        return Answer::json(R"({"data":{"applications":[{"id":"a1","slug":"talvex-llm-trainer",)"
                            R"("name":"Talvex LLM Trainer","platforms":["macos"]}]}})");
    }
    if (path.endsWith("/applications/talvex-llm-trainer/latest")) {
        return Answer::json(
            R"({"data":{"appId":"a1","channel":"stable","platform":"macos","release":{"id":"r1",)"
            R"("version":"1.4.0","channel":"stable","isYanked":false,"artifacts":[]},)"
            R"("artifact":{"platform":"macos","fileName":"Trainer-1.4.0.zip","downloadUrl":)"
            R"("https://files.example/Trainer-1.4.0.zip","sizeBytes":12345678,)"
            R"("contentType":"application/zip"}}})");
    }
    if (path.endsWith("/status")) {
        return Answer::json(R"({"data":{"status":"degraded","components":[)"
                            R"({"id":"c1","name":"Downloads","status":"operational"},)"
                            R"({"id":"c2","name":"Sign-in","status":"partialOutage"}]}})");
    }
    return Answer::json(R"({"error":{"code":"not_found","message":"No such application"}})", 404);
}

} // namespace caldra::tests
