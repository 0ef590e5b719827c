#pragma once

#include "service/core/JSONValue.h"
#include "service/core/RecordFields.h"

#include <QString>

#include <array>
#include <optional>
#include <vector>

namespace caldra {

enum class NewsroomPostStatus { draft, scheduled, published };

constexpr auto wireTexts(NewsroomPostStatus)
{
    return std::array{WireText{NewsroomPostStatus::draft, "draft"},
                      WireText{NewsroomPostStatus::scheduled, "scheduled"},
                      WireText{NewsroomPostStatus::published, "published"}};
}

/// What is sent along with a post when asked for.
enum class NewsroomInclude { document };

constexpr auto wireTexts(NewsroomInclude)
{
    return std::array{WireText{NewsroomInclude::document, "document"}};
}

struct NewsroomCategory
{
    QString id;
    std::optional<QString> slug;
    std::optional<QString> label;
    std::optional<QString> color;
    std::optional<qint64> sortOrder;
    std::optional<QString> createdAt;

    bool operator==(const NewsroomCategory &) const = default;

    static constexpr auto fields = std::tuple{field("id", &NewsroomCategory::id),
                                              field("slug", &NewsroomCategory::slug),
                                              field("label", &NewsroomCategory::label),
                                              field("color", &NewsroomCategory::color),
                                              field("sortOrder", &NewsroomCategory::sortOrder),
                                              field("createdAt", &NewsroomCategory::createdAt)};
};

struct NewsroomPost
{
    QString id;
    std::optional<QString> slug;
    std::optional<QString> title;
    std::optional<QString> categoryId;
    std::optional<std::vector<QString>> tags;
    std::optional<QString> excerpt;
    std::optional<QString> body;
    std::optional<NewsroomPostStatus> status;
    std::optional<QString> heroImageUrl;
    std::optional<QString> createdBy;
    std::optional<QString> publishedAt;
    std::optional<QString> scheduledFor;
    std::optional<QString> createdAt;
    std::optional<QString> updatedAt;
    std::optional<JSONValue> document;

    bool operator==(const NewsroomPost &) const = default;

    static constexpr auto fields = std::tuple{field("id", &NewsroomPost::id),
                                              field("slug", &NewsroomPost::slug),
                                              field("title", &NewsroomPost::title),
                                              field("categoryId", &NewsroomPost::categoryId),
                                              field("tags", &NewsroomPost::tags),
                                              field("excerpt", &NewsroomPost::excerpt),
                                              field("body", &NewsroomPost::body),
                                              field("status", &NewsroomPost::status),
                                              field("heroImageUrl", &NewsroomPost::heroImageUrl),
                                              field("createdBy", &NewsroomPost::createdBy),
                                              field("publishedAt", &NewsroomPost::publishedAt),
                                              field("scheduledFor", &NewsroomPost::scheduledFor),
                                              field("createdAt", &NewsroomPost::createdAt),
                                              field("updatedAt", &NewsroomPost::updatedAt),
                                              field("document", &NewsroomPost::document)};
};

/// Creates a post or updates the given fields of one.
struct NewsroomPostRequest
{
    std::optional<QString> title;
    std::optional<QString> categoryId;
    std::optional<QString> slug;
    std::optional<QString> body;
    std::optional<QString> excerpt;
    std::optional<std::vector<QString>> tags;
    std::optional<QString> heroImageUrl;
    std::optional<NewsroomPostStatus> status;
    std::optional<QString> scheduledFor;

    bool operator==(const NewsroomPostRequest &) const = default;

    static constexpr auto fields = std::tuple{field("title", &NewsroomPostRequest::title),
                                              field("categoryId", &NewsroomPostRequest::categoryId),
                                              field("slug", &NewsroomPostRequest::slug),
                                              field("body", &NewsroomPostRequest::body),
                                              field("excerpt", &NewsroomPostRequest::excerpt),
                                              field("tags", &NewsroomPostRequest::tags),
                                              field("heroImageUrl", &NewsroomPostRequest::heroImageUrl),
                                              field("status", &NewsroomPostRequest::status),
                                              field("scheduledFor", &NewsroomPostRequest::scheduledFor)};
};

struct NewsroomPostFilter
{
    std::optional<NewsroomPostStatus> status;
    std::optional<QString> categoryId;
    std::optional<qint64> limit;
    std::optional<NewsroomInclude> include;

    bool operator==(const NewsroomPostFilter &) const = default;

    static constexpr auto fields = std::tuple{
        field("status", &NewsroomPostFilter::status), field("categoryId", &NewsroomPostFilter::categoryId),
        field("limit", &NewsroomPostFilter::limit), field("include", &NewsroomPostFilter::include)};
};

struct NewsroomPostOptions
{
    std::optional<NewsroomInclude> include;

    bool operator==(const NewsroomPostOptions &) const = default;

    static constexpr auto fields = std::tuple{field("include", &NewsroomPostOptions::include)};
};

struct NewsroomCategoriesResponse
{
    std::vector<NewsroomCategory> categories;

    bool operator==(const NewsroomCategoriesResponse &) const = default;

    static constexpr auto fields = std::tuple{field("categories", &NewsroomCategoriesResponse::categories)};
};

struct NewsroomPostsResponse
{
    std::vector<NewsroomPost> posts;

    bool operator==(const NewsroomPostsResponse &) const = default;

    static constexpr auto fields = std::tuple{field("posts", &NewsroomPostsResponse::posts)};
};

struct NewsroomPostResponse
{
    NewsroomPost post;

    bool operator==(const NewsroomPostResponse &) const = default;

    static constexpr auto fields = std::tuple{field("post", &NewsroomPostResponse::post)};
};

} // namespace caldra
