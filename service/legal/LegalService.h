#pragma once

#include "service/core/Envelope.h"
#include "service/core/HTTPClient.h"
#include "service/legal/LegalRecords.h"

namespace caldra {

/// Legal policies and their sections.
///
/// Any thread. Every call fails with CaldraError alone.
struct LegalService
{
    HTTPClient http;
    QString orgId;

    QFuture<LegalPoliciesResponse> listPolicies() const;
    QFuture<LegalPolicyResponse> getPolicyByKey(const QString &key) const;
    QFuture<LegalPolicyResponse> getPolicy(const QString &policyId) const;
    QFuture<LegalPolicyResponse> createPolicy(const CreateLegalPolicyRequest &policy) const;
    QFuture<LegalPolicyResponse> updatePolicy(const QString &policyId,
                                              const UpdateLegalPolicyRequest &changes) const;
    QFuture<EmptyResponse> deletePolicy(const QString &policyId) const;
    QFuture<LegalSectionResponse> addSection(const QString &policyId,
                                             const LegalSectionRequest &section) const;
    QFuture<LegalSectionResponse> updateSection(const QString &policyId, const QString &sectionId,
                                                const LegalSectionRequest &changes) const;
    QFuture<EmptyResponse> deleteSection(const QString &policyId, const QString &sectionId) const;
};

} // namespace caldra
