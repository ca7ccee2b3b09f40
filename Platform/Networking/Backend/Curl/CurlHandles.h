#pragma once

#include <curl/curl.h>

#include <memory>

namespace flarebox {

namespace detail {
template <auto Function>
struct Calling {
    template <class T>
    void operator()(T* handle) const {
        Function(handle);
    }
};
}  // namespace detail

using EasyHandle = std::unique_ptr<CURL, detail::Calling<curl_easy_cleanup>>;
using MultiHandle = std::unique_ptr<CURLM, detail::Calling<curl_multi_cleanup>>;
using StringList = std::unique_ptr<curl_slist, detail::Calling<curl_slist_free_all>>;

}  // namespace flarebox
