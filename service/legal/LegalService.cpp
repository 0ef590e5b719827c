#include "service/legal/LegalService.h"

#include "service/core/HTTPClientRequest.h"

using namespace Qt::StringLiterals;

namespace caldra {

QFuture<LegalPoliciesResponse> LegalService::listPolicies() const
{
    return http.request<LegalPoliciesResponse>(HTTPMethod::GET,
                                               organizationPath(orgId) + u"/legal-policies"_s);
}

QFuture<LegalPolicyResponse> LegalService::getPolicyByKey(const QString &key) const
{
    return http.request<LegalPolicyResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/legal-policies/by-key/"_s + pathSegment(key));
}

QFuture<LegalPolicyResponse> LegalService::getPolicy(const QString &policyId) const
{
    return http.request<LegalPolicyResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/legal-policies/"_s + pathSegment(policyId));
}

QFuture<LegalPolicyResponse> LegalService::createPolicy(const CreateLegalPolicyRequest &policy) const
{
    return http.request<LegalPolicyResponse>(HTTPMethod::POST, organizationPath(orgId) + u"/legal-policies"_s,
                                             {}, policy);
}

QFuture<LegalPolicyResponse> LegalService::updatePolicy(const QString &policyId,
                                                        const UpdateLegalPolicyRequest &changes) const
{
    return http.request<LegalPolicyResponse>(
        HTTPMethod::PUT, organizationPath(orgId) + u"/legal-policies/"_s + pathSegment(policyId), {},
        changes);
}

QFuture<EmptyResponse> LegalService::deletePolicy(const QString &policyId) const
{
    return http.request<EmptyResponse>(HTTPMethod::DELETE, organizationPath(orgId) + u"/legal-policies/"_s +
                                                               pathSegment(policyId));
}

QFuture<LegalSectionResponse> LegalService::addSection(const QString &policyId,
                                                       const LegalSectionRequest &section) const
{
    return http.request<LegalSectionResponse>(HTTPMethod::POST,
                                              organizationPath(orgId) + u"/legal-policies/"_s +
                                                  pathSegment(policyId) + u"/sections"_s,
                                              {}, section);
}

QFuture<LegalSectionResponse> LegalService::updateSection(const QString &policyId, const QString &sectionId,
                                                          const LegalSectionRequest &changes) const
{
    return http.request<LegalSectionResponse>(HTTPMethod::PUT,
                                              organizationPath(orgId) + u"/legal-policies/"_s +
                                                  pathSegment(policyId) + u"/sections/"_s +
                                                  pathSegment(sectionId),
                                              {}, changes);
}

QFuture<EmptyResponse> LegalService::deleteSection(const QString &policyId, const QString &sectionId) const
{
    return http.request<EmptyResponse>(HTTPMethod::DELETE, organizationPath(orgId) + u"/legal-policies/"_s +
                                                               pathSegment(policyId) + u"/sections/"_s +
                                                               pathSegment(sectionId));
}

} // namespace caldra
