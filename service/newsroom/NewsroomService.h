#pragma once

#include "service/core/Envelope.h"
#include "service/core/HTTPClient.h"
#include "service/newsroom/NewsroomRecords.h"

namespace caldra {

/// Posts of the newsroom and their categories.
///
/// Any thread. Every call fails with CaldraError alone.
struct NewsroomService
{
    HTTPClient http;
    QString orgId;

    QFuture<NewsroomCategoriesResponse> listCategories() const;
    QFuture<NewsroomPostsResponse> listPosts(const NewsroomPostFilter &filter = {}) const;
    QFuture<NewsroomPostResponse> getPost(const QString &postId,
                                          const NewsroomPostOptions &options = {}) const;
    QFuture<NewsroomPostResponse> createPost(const NewsroomPostRequest &post) const;
    QFuture<NewsroomPostResponse> updatePost(const QString &postId, const NewsroomPostRequest &changes) const;
    QFuture<EmptyResponse> deletePost(const QString &postId) const;
};

} // namespace caldra
