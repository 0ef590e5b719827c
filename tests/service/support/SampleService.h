#pragma once

namespace caldra::tests {

struct Answer;
struct ReceivedRequest;

/// A small service with one application, one release and two components.
Answer sampleService(const ReceivedRequest &request);

} // namespace caldra::tests
