#include "service/newsroom/NewsroomService.h"

#include "service/core/HTTPClientRequest.h"
#include "service/core/QueryEncoder.h"

using namespace Qt::StringLiterals;

namespace caldra {

QFuture<NewsroomCategoriesResponse> NewsroomService::listCategories() const
{
    return http.request<NewsroomCategoriesResponse>(HTTPMethod::GET,
                                                    organizationPath(orgId) + u"/newsroom/categories"_s);
}

QFuture<NewsroomPostsResponse> NewsroomService::listPosts(const NewsroomPostFilter &filter) const
{
    return http.request<NewsroomPostsResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/newsroom/posts"_s, queryItems(filter));
}

QFuture<NewsroomPostResponse> NewsroomService::getPost(const QString &postId,
                                                       const NewsroomPostOptions &options) const
{
    return http.request<NewsroomPostResponse>(
        HTTPMethod::GET, organizationPath(orgId) + u"/newsroom/posts/"_s + pathSegment(postId),
        queryItems(options));
}

QFuture<NewsroomPostResponse> NewsroomService::createPost(const NewsroomPostRequest &post) const
{
    return http.request<NewsroomPostResponse>(HTTPMethod::POST,
                                              organizationPath(orgId) + u"/newsroom/posts"_s, {}, post);
}

QFuture<NewsroomPostResponse> NewsroomService::updatePost(const QString &postId,
                                                          const NewsroomPostRequest &changes) const
{
    return http.request<NewsroomPostResponse>(
        HTTPMethod::PATCH, organizationPath(orgId) + u"/newsroom/posts/"_s + pathSegment(postId), {},
        changes);
}

QFuture<EmptyResponse> NewsroomService::deletePost(const QString &postId) const
{
    return http.request<EmptyResponse>(HTTPMethod::DELETE,
                                       organizationPath(orgId) + u"/newsroom/posts/"_s + pathSegment(postId));
}

} // namespace caldra
