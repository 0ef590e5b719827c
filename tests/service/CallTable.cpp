#include "tests/service/CallTable.h"

#include "service/CaldraClient.h"
#include "service/core/RecordDecoder.h"
#include "service/core/RecordEncoder.h"
#include "tests/service/support/Outcome.h"

using namespace Qt::StringLiterals;

namespace caldra::tests {

namespace {

template <class T>
QByteArray answerOf(QFuture<T> call)
{
    return encodeJSON(resultOf(call));
}

QByteArray answerOf(QFuture<QUrl> call)
{
    return resultOf(call).toEncoded();
}

// The answers' records as the services write them, every field present.
const QByteArray artifactText =
    R"({"platform":"macos","fileName":"a.zip","downloadUrl":"https://f.example/a.zip",)"
    R"("sizeBytes":5000000000,"contentType":"application/zip","sha256":"ab","version":"1.2",)"
    R"("buildNumber":"7","minOsVersion":"14.0","architecture":"arm64",)"
    R"("installPurpose":"update","metadataAutoDetected":true})";
const QByteArray artifactX86Text =
    R"({"platform":"windows","fileName":"b.exe","downloadUrl":"u","sizeBytes":0,)"
    R"("contentType":"t","architecture":"x86","installPurpose":"install",)"
    R"("metadataAutoDetected":false})";
const QByteArray releaseText =
    R"({"id":"r1","version":"1.2","channel":"beta","buildNumber":"7","notes":"n",)"
    R"("isYanked":true,"releasedAt":"2024-01-01","updatedAt":"2024-01-02","artifacts":[)" +
    artifactText + R"(,)" + artifactX86Text + R"(]})";
const QByteArray smallReleaseText =
    R"({"id":"r0","version":"1.0","channel":"dev","isYanked":false,"artifacts":[]})";
const QByteArray applicationText =
    R"({"id":"a1","slug":"trainer","name":"Trainer","platforms":["macos","windows"],)"
    R"("bundleId":"b","description":"d","homepageUrl":"h","iconUrl":"i",)"
    R"("iconStoragePath":"p","isPublic":true,"latest":{"macos":{"stable":{"releaseId":"r1",)"
    R"("version":"1.2","updatedAt":"2024"},"beta":{"releaseId":"r2","version":"1.3"}},)"
    R"("windows":{}},"createdAt":"2023","updatedAt":"2024"})";
const QByteArray ticketText =
    R"({"id":"t1","contactEmail":"a@b.example","applicationName":"Trainer","subject":"s",)"
    R"("body":"b","priority":"urgent","category":"featureRequest","status":"open",)"
    R"("channel":"c","environment":"e","deviceInfo":"d","relatedUrl":"u",)"
    R"("requesterName":"n","createdAt":"1","updatedAt":"2"})";
const QByteArray ticketCommentText =
    R"({"id":"c1","ticketId":"t1","body":"b","authorDisplayName":"n","authorEmail":"e",)"
    R"("isInternal":true,"createdAt":"1"})";
const QByteArray postingText = R"({"requisitionNodeId":"q1","title":"t","location":"l","department":"d",)"
                               R"("employmentType":"e","description":"x","publishedAt":"1","updatedAt":"2",)"
                               R"("isOpen":true})";
const QByteArray templateText =
    R"({"templateVersion":"3","sections":[{"id":"s1","title":"t","description":"d",)"
    R"("fields":[{"id":"f1","type":"choice","label":"l","required":true,"options":["a","b"],)"
    R"("helpText":"h"},{"id":"f2"}]},{"id":"s2"}]})";
const QByteArray careersApplicationText =
    R"({"id":"x1","requisitionNodeId":"q1","applicantEmail":"a","contactEmail":"c",)"
    R"("templateVersion":"3","status":"received","answers":{"f1":["a"],"f2":5},)"
    R"("createdAt":"1","updatedAt":"2"})";
const QByteArray flagText =
    R"({"id":"g1","key":"k","name":"n","description":"d","enabled":true,)"
    R"("rolloutPercent":12.5,"countryMode":"allow","countryCodes":["DE","FR"],"status":"on",)"
    R"("startsAt":"1","endsAt":"2"})";
const QByteArray policyText = R"({"id":"p1","key":"terms","title":"t","description":"d","status":"archived",)"
                              R"("sectionCount":2,"createdAt":"1","updatedAt":"2"})";
const QByteArray sectionText =
    R"({"id":"s1","title":"t","body":"b","sortOrder":3,"createdAt":"1","updatedAt":"2"})";
const QByteArray policyAnswerText = R"({"orgId":"org","policy":)" + policyText + R"(,"sections":[)" +
                                    sectionText + R"(,{"id":"s2"}],"generatedAt":"3"})";
const QByteArray categoryText =
    R"({"id":"c1","slug":"news","label":"News","color":"red","sortOrder":1,"createdAt":"1"})";
const QByteArray postText =
    R"({"id":"n1","slug":"s","title":"t","categoryId":"c1","tags":["x","y"],"excerpt":"e",)"
    R"("body":"b","status":"scheduled","heroImageUrl":"h","createdBy":"me",)"
    R"("publishedAt":"1","scheduledFor":"2","createdAt":"3","updatedAt":"4",)"
    R"("document":{"blocks":[1,null]}})";
const QByteArray submissionText =
    R"({"id":"u1","contactEmail":"c","formName":"f","firstName":"a","lastName":"b",)"
    R"("message":"m","details":{"seats":5},"leadStatus":"new","leadSource":"web",)"
    R"("company":"co","companySize":"11-50","companyWebsite":"w","address":"ad","phone":"1",)"
    R"("createdAt":"1","updatedAt":"2"})";
const QByteArray salesCommentText =
    R"({"id":"c1","body":"b","authorDisplayName":"n","authorEmail":"e","createdAt":"1"})";
const QByteArray componentText =
    R"({"id":"k1","key":"api","name":"API","description":"d","status":"partialOutage",)"
    R"("sortOrder":2,"updatedAt":"1"})";

std::vector<Call> makeTable()
{
    return {
        {"publicApplications", "GET", "/distributionApi/v1/organizations/org/applications/public", "",
         R"({"schema":"1","orgId":"org","applications":[)" + applicationText +
             R"(,{"id":"a2","slug":"s","name":"n","platforms":[]}]})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.publicApplications());
         }},
        {"listApplications", "GET", "/distributionApi/v1/organizations/org/applications", "",
         R"({"applications":[)" + applicationText + R"(]})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.listApplications());
         }},
        {"getApplication", "GET", "/distributionApi/v1/organizations/org/applications/trainer", "",
         R"({"schema":"1","application":)" + applicationText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.getApplication(u"trainer"_s));
         }},
        {"listReleases", "GET",
         "/distributionApi/v1/organizations/org/applications/trainer/"
         "releases?channel=beta&platform=windows&limit=25",
         "", R"({"schema":"1","appId":"a1","releases":[)" + releaseText + R"(,)" + smallReleaseText + R"(]})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.listReleases(
                 u"trainer"_s, {DistributionChannel::beta, DistributionPlatform::windows, 25}));
         }},
        {"getRelease", "GET", "/distributionApi/v1/organizations/org/applications/trainer/releases/r1", "",
         R"({"schema":"1","release":)" + releaseText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.getRelease(u"trainer"_s, u"r1"_s));
         }},
        {"latest", "GET",
         "/distributionApi/v1/organizations/org/applications/talvex-llm-trainer/"
         "latest?platform=macos&channel=stable&purpose=update",
         "",
         R"({"schema":"1","appId":"a1","channel":"stable","platform":"macos","release":)" + smallReleaseText +
             R"(,"artifact":)" + artifactText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.latest(
                 u"talvex-llm-trainer"_s, {DistributionPlatform::macos, DistributionChannel::stable,
                                           DistributionArtifactPurpose::update}));
         }},
        {"download", "GET",
         "/distributionApi/v1/organizations/org/applications/trainer/"
         "download?platform=windows&channel=dev&purpose=install",
         "", R"(https://files.example/a.zip?x=%2F)",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.download(
                 u"trainer"_s, {DistributionPlatform::windows, DistributionChannel::dev,
                                DistributionArtifactPurpose::install}));
         },
         true},
        {"icon", "GET", "/distributionApi/v1/organizations/org/applications/trainer/icon?format=json", "",
         R"({"schema":"1","appId":"a1","iconUrl":"u","iconStoragePath":"p"})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.icon(u"trainer"_s));
         }},
        {"iconLocation", "GET",
         "/distributionApi/v1/organizations/org/applications/trainer/icon?format=redirect", "",
         R"(https://files.example/icon.png)",
         [](const CaldraClient &client) { return answerOf(client.distribution.iconLocation(u"trainer"_s)); },
         true},
        {"publishRelease", "POST", "/distributionApi/v1/organizations/org/applications/trainer/releases",
         R"({"version":"1.2","channel":"stable","buildNumber":"7","notes":"n",)"
         R"("artifacts":[{"platform":"macos","fileName":"a.zip","downloadUrl":"u","sizeBytes":1,)"
         R"("contentType":"t","architecture":"universal"}]})",
         R"({"release":)" + releaseText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.publishRelease(
                 u"trainer"_s,
                 decodeJSON<PublishReleaseRequest>(QByteArray(
                     R"({"version":"1.2","channel":"stable","buildNumber":"7","notes":"n",)"
                     R"("artifacts":[{"platform":"macos","fileName":"a.zip","downloadUrl":"u","sizeBytes":1,)"
                     R"("contentType":"t","architecture":"universal"}]})"))));
         }},
        {"updateRelease", "PATCH", "/distributionApi/v1/organizations/org/applications/trainer/releases/r1",
         R"({"notes":"n","isYanked":true})", R"({"release":)" + releaseText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.distribution.updateRelease(u"trainer"_s, u"r1"_s, {u"n"_s, true}));
         }},
        {"createTicket", "POST", "/crmSupportApi/v1/organizations/org/support/tickets",
         R"({"contactEmail":"a@b.example","applicationName":"n","subject":"s","body":"b",)"
         R"("priority":"low","category":"billing","channel":"c","environment":"e",)"
         R"("deviceInfo":"d","relatedUrl":"u","requesterName":"r"})",
         R"({"ticket":)" + ticketText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.support.createTicket({u"a@b.example"_s, u"n"_s, u"s"_s, u"b"_s,
                                                          SupportPriority::low, SupportCategory::billing,
                                                          u"c"_s, u"e"_s, u"d"_s, u"u"_s, u"r"_s}));
         }},
        {"listTickets", "GET",
         "/crmSupportApi/v1/organizations/org/support/tickets?contactEmail=a%2Bb%40c.example", "",
         R"({"tickets":[)" + ticketText + R"(,{"id":"t2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.support.listTickets({u"a+b@c.example"_s}));
         }},
        {"getTicket", "GET", "/crmSupportApi/v1/organizations/org/support/tickets/t1", "",
         R"({"ticket":)" + ticketText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.support.getTicket(u"t1"_s));
         }},
        {"support listComments", "GET", "/crmSupportApi/v1/organizations/org/support/tickets/t1/comments", "",
         R"({"comments":[)" + ticketCommentText + R"(,{"id":"c2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.support.listComments(u"t1"_s));
         }},
        {"support addComment", "POST", "/crmSupportApi/v1/organizations/org/support/tickets/t1/comments",
         R"({"body":"b","authorDisplayName":"n","authorEmail":"e","isInternal":false})",
         R"({"comment":)" + ticketCommentText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.support.addComment(u"t1"_s, {u"b"_s, u"n"_s, u"e"_s, false}));
         }},
        {"careers health", "GET", "/careersApi/health", "", R"({"ok":true,"service":"careers"})",
         [](const CaldraClient &client) {
             return answerOf(client.careers.health());
         }},
        {"listPostings", "GET", "/careersApi/v1/organizations/org/careers/postings", "",
         R"({"postings":[)" + postingText + R"(,{"requisitionNodeId":"q2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.careers.listPostings());
         }},
        {"getPosting", "GET", "/careersApi/v1/organizations/org/careers/postings/q1", "",
         R"({"posting":)" + postingText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.careers.getPosting(u"q1"_s));
         }},
        {"applicationTemplate", "GET", "/careersApi/v1/organizations/org/careers/application-template", "",
         R"({"template":)" + templateText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.careers.applicationTemplate());
         }},
        {"careers listApplications", "GET",
         "/careersApi/v1/organizations/org/careers/"
         "applications?applicantEmail=a&contactEmail=c&status=new%20one&limit=5",
         "", R"({"applications":[)" + careersApplicationText + R"(,{"id":"x2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.careers.listApplications({u"a"_s, u"c"_s, u"new one"_s, 5}));
         }},
        {"careers getApplication", "GET", "/careersApi/v1/organizations/org/careers/applications/x1", "",
         R"({"application":)" + careersApplicationText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.careers.getApplication(u"x1"_s));
         }},
        {"submitApplication", "POST", "/careersApi/v1/organizations/org/careers/applications",
         R"({"requisitionNodeId":"q1","templateVersion":"3","applicantEmail":"a",)"
         R"("answers":{"f1":["a"],"f2":true}})",
         R"({"application":)" + careersApplicationText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.careers.submitApplication(
                 {u"q1"_s, u"3"_s, u"a"_s, {{u"f1"_s, JSONValue::Array{u"a"_s}}, {u"f2"_s, true}}}));
         }},
        {"listFlags", "GET", "/developerApi/v1/organizations/org/flags", "",
         R"({"orgId":"org","generatedAt":"1","flags":[)" + flagText + R"(,{"id":"g2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.featureFlags.listFlags());
         }},
        {"evaluate", "POST", "/developerApi/v1/organizations/org/evaluate",
         R"({"subjectId":"s","countryCode":"DE","flagKeys":["k"]})",
         R"({"orgId":"org","subjectId":"s","countryCode":"DE","evaluatedAt":"1",)"
         R"("results":{"k":true}})",
         [](const CaldraClient &client) {
             return answerOf(client.featureFlags.evaluate({u"s"_s, u"DE"_s, {{u"k"_s}}}));
         }},
        {"listPolicies", "GET", "/legalPoliciesApi/v1/organizations/org/legal-policies", "",
         R"({"orgId":"org","policies":[)" + policyText + R"(,{"id":"p2"}],"generatedAt":"1"})",
         [](const CaldraClient &client) {
             return answerOf(client.legal.listPolicies());
         }},
        {"getPolicyByKey", "GET", "/legalPoliciesApi/v1/organizations/org/legal-policies/by-key/terms", "",
         policyAnswerText,
         [](const CaldraClient &client) {
             return answerOf(client.legal.getPolicyByKey(u"terms"_s));
         }},
        {"getPolicy", "GET", "/legalPoliciesApi/v1/organizations/org/legal-policies/p1", "", policyAnswerText,
         [](const CaldraClient &client) {
             return answerOf(client.legal.getPolicy(u"p1"_s));
         }},
        {"createPolicy", "POST", "/legalPoliciesApi/v1/organizations/org/legal-policies",
         R"({"key":"terms","title":"t","description":"d","status":"draft"})", policyAnswerText,
         [](const CaldraClient &client) {
             return answerOf(
                 client.legal.createPolicy({u"terms"_s, u"t"_s, u"d"_s, LegalPolicyStatus::draft}));
         }},
        {"updatePolicy", "PUT", "/legalPoliciesApi/v1/organizations/org/legal-policies/p1",
         R"({"title":"t","description":"d","status":"published"})", R"({"policy":)" + policyText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(
                 client.legal.updatePolicy(u"p1"_s, {u"t"_s, u"d"_s, LegalPolicyStatus::published}));
         }},
        {"deletePolicy", "DELETE", "/legalPoliciesApi/v1/organizations/org/legal-policies/p1", "", R"({})",
         [](const CaldraClient &client) {
             return answerOf(client.legal.deletePolicy(u"p1"_s));
         }},
        {"addSection", "POST", "/legalPoliciesApi/v1/organizations/org/legal-policies/p1/sections",
         R"({"title":"t","body":"b","sortOrder":3})", R"({"section":)" + sectionText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.legal.addSection(u"p1"_s, {u"t"_s, u"b"_s, 3}));
         }},
        {"updateSection", "PUT", "/legalPoliciesApi/v1/organizations/org/legal-policies/p1/sections/s1",
         R"({"body":"b"})", R"({"section":)" + sectionText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.legal.updateSection(u"p1"_s, u"s1"_s, {{}, u"b"_s, {}}));
         }},
        {"deleteSection", "DELETE", "/legalPoliciesApi/v1/organizations/org/legal-policies/p1/sections/s1",
         "", R"({})",
         [](const CaldraClient &client) {
             return answerOf(client.legal.deleteSection(u"p1"_s, u"s1"_s));
         }},
        {"listCategories", "GET", "/newsroomApi/v1/organizations/org/newsroom/categories", "",
         R"({"categories":[)" + categoryText + R"(,{"id":"c2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.newsroom.listCategories());
         }},
        {"listPosts", "GET",
         "/newsroomApi/v1/organizations/org/newsroom/"
         "posts?status=published&categoryId=c1&limit=9&include=document",
         "", R"({"posts":[)" + postText + R"(,{"id":"n2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.newsroom.listPosts(
                 {NewsroomPostStatus::published, u"c1"_s, 9, NewsroomInclude::document}));
         }},
        {"getPost", "GET", "/newsroomApi/v1/organizations/org/newsroom/posts/n1?include=document", "",
         R"({"post":)" + postText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.newsroom.getPost(u"n1"_s, {NewsroomInclude::document}));
         }},
        {"createPost", "POST", "/newsroomApi/v1/organizations/org/newsroom/posts",
         R"({"title":"t","categoryId":"c1","slug":"s","body":"b","excerpt":"e","tags":["x"],)"
         R"("heroImageUrl":"h","status":"scheduled","scheduledFor":"2"})",
         R"({"post":)" + postText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.newsroom.createPost({u"t"_s,
                                                         u"c1"_s,
                                                         u"s"_s,
                                                         u"b"_s,
                                                         u"e"_s,
                                                         {{u"x"_s}},
                                                         u"h"_s,
                                                         NewsroomPostStatus::scheduled,
                                                         u"2"_s}));
         }},
        {"updatePost", "PATCH", "/newsroomApi/v1/organizations/org/newsroom/posts/n1",
         R"({"status":"draft"})", R"({"post":)" + postText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.newsroom.updatePost(
                 u"n1"_s, decodeJSON<NewsroomPostRequest>(QByteArray(R"({"status":"draft"})"))));
         }},
        {"deletePost", "DELETE", "/newsroomApi/v1/organizations/org/newsroom/posts/n1", "", R"({})",
         [](const CaldraClient &client) {
             return answerOf(client.newsroom.deletePost(u"n1"_s));
         }},
        {"submit", "POST", "/crmSalesApi/v1/organizations/org/sales/submissions",
         R"({"contactEmail":"c","formName":"f","firstName":"a","lastName":"b","message":"m",)"
         R"("details":{"seats":5},"leadStatus":"working","leadSource":"web","company":"co",)"
         R"("companySize":"5","companyWebsite":"w","address":"ad","phone":"1"})",
         R"({"submission":)" + submissionText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.sales.submit(
                 {u"c"_s, u"f"_s, u"a"_s, u"b"_s, u"m"_s, JSONValue::Object{{u"seats"_s, 5}},
                  SalesLeadStatus::working, u"web"_s, u"co"_s, u"5"_s, u"w"_s, u"ad"_s, u"1"_s}));
         }},
        {"listSubmissions", "GET",
         "/crmSalesApi/v1/organizations/org/sales/submissions?contactEmail=c&limit=7", "",
         R"({"submissions":[)" + submissionText + R"(,{"id":"u2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.sales.listSubmissions({u"c"_s, 7}));
         }},
        {"getSubmission", "GET", "/crmSalesApi/v1/organizations/org/sales/submissions/u1", "",
         R"({"submission":)" + submissionText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.sales.getSubmission(u"u1"_s));
         }},
        {"sales listComments", "GET", "/crmSalesApi/v1/organizations/org/sales/submissions/u1/comments", "",
         R"({"comments":[)" + salesCommentText + R"(,{"id":"c2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.sales.listComments(u"u1"_s));
         }},
        {"sales addComment", "POST", "/crmSalesApi/v1/organizations/org/sales/submissions/u1/comments",
         R"({"body":"b","authorDisplayName":"n","authorEmail":"e"})",
         R"({"comment":)" + salesCommentText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.sales.addComment(u"u1"_s, {u"b"_s, u"n"_s, u"e"_s}));
         }},
        {"overallStatus", "GET", "/systemStatusApi/v1/organizations/org/status", "",
         R"({"status":"majorOutage","updatedAt":"1","components":[)" + componentText + R"(,{"id":"k2"}]})",
         [](const CaldraClient &client) {
             return answerOf(client.systemStatus.overallStatus());
         }},
        {"getComponent", "GET", "/systemStatusApi/v1/organizations/org/status/components/k1", "",
         R"({"component":)" + componentText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.systemStatus.getComponent(u"k1"_s));
         }},
        {"createComponent", "POST", "/systemStatusApi/v1/organizations/org/status/components",
         R"({"key":"api","name":"API","description":"d","status":"operational","sortOrder":2})",
         R"({"component":)" + componentText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.systemStatus.createComponent(
                 {u"api"_s, u"API"_s, u"d"_s, SystemComponentStatus::operational, 2}));
         }},
        {"updateComponent", "PUT", "/systemStatusApi/v1/organizations/org/status/components/k1",
         R"({"name":"API","description":"d","status":"maintenance","sortOrder":0})",
         R"({"component":)" + componentText + R"(})",
         [](const CaldraClient &client) {
             return answerOf(client.systemStatus.updateComponent(
                 u"k1"_s, {u"API"_s, u"d"_s, SystemComponentStatus::maintenance, 0}));
         }},
        {"deleteComponent", "DELETE", "/systemStatusApi/v1/organizations/org/status/components/k1", "",
         R"({})",
         [](const CaldraClient &client) {
             return answerOf(client.systemStatus.deleteComponent(u"k1"_s));
         }},
    };
}

} // namespace

const std::vector<Call> &callTable()
{
    static const std::vector<Call> table = makeTable();
    return table;
}

} // namespace caldra::tests
