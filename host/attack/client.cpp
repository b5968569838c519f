#include "host/attack/client.h"

#include <curl/curl.h>

#include <algorithm>
#include <stdexcept>
#include <thread>

#include "kalvo/platform/append.h"
#include "kalvo/platform/conversion.h"
#include "kalvo/platform/text_tools.h"

namespace kalvo::attack {
namespace {

constexpr std::chrono::milliseconds kBetween{100};
constexpr long kSeconds = 15;  // for one answer
constexpr std::size_t kLargestBody = 4 << 20;
constexpr std::size_t kMostHeaders = 1000;
constexpr std::string_view kConsole = "/KalvoforExchange/";

struct FreeList {
  void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};
using HeaderList = std::unique_ptr<curl_slist, FreeList>;

struct FreeUrl {
  void operator()(CURLU* url) const { curl_url_cleanup(url); }
};
using Url = std::unique_ptr<CURLU, FreeUrl>;

std::string PartOf(CURLU* url, CURLUPart part) {
  char* text = nullptr;
  if (curl_url_get(url, part, &text, 0) != CURLUE_OK || !text) return "";
  std::string copy(text);
  curl_free(text);
  return copy;
}

extern "C" size_t KalvoTakeBody(char* bytes, size_t size, size_t count, void* answer) {
  std::string& body = static_cast<Answer*>(answer)->body;
  body.append(bytes, std::min(size * count, kLargestBody - std::min(kLargestBody, body.size())));
  return size * count;
}

extern "C" size_t KalvoTakeHeader(char* bytes, size_t size, size_t count, void* answer) {
  const std::string_view line(bytes, size * count);
  auto& headers = static_cast<Answer*>(answer)->headers;
  const auto colon = line.find(':');
  if (line.starts_with("HTTP/")) {
    headers.clear();  // an answer before the answer
  } else if (headers.size() == kMostHeaders) {
    return 0;  // ends the request
  } else if (colon != std::string::npos) {
    headers.emplace_back(ToLower(line.substr(0, colon)), Trimmed(line.substr(colon + 1)));
  }
  return size * count;
}

HeaderList ListOf(const std::vector<std::string>& headers) {
  HeaderList list;
  for (const std::string& header : headers) {
    curl_slist* longer = curl_slist_append(list.get(), header.c_str());
    if (!longer) throw std::bad_alloc();
    list.release();
    list.reset(longer);
  }
  return list;
}

}  // namespace

struct Client::Handle {
  Handle() : curl(curl_easy_init()) {
    if (!curl) throw std::bad_alloc();
  }
  ~Handle() { curl_easy_cleanup(curl); }
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;

  CURL* curl;
};

std::string Answer::Header(std::string_view name) const {
  std::string values;
  for (const auto& [key, value] : headers) {
    if (key == name) Append(values, values.empty() ? "" : ", ", value);
  }
  return values;
}

std::optional<Origin> ParseOrigin(std::string_view text) {
  const Url url(curl_url());
  if (!url || curl_url_set(url.get(), CURLUPART_URL, std::string(text).c_str(), 0) != CURLUE_OK) return std::nullopt;
  const std::string scheme = PartOf(url.get(), CURLUPART_SCHEME), path = PartOf(url.get(), CURLUPART_PATH);
  const std::string host = PartOf(url.get(), CURLUPART_HOST), port = PartOf(url.get(), CURLUPART_PORT);
  if ((scheme != "http" && scheme != "https") || host.empty() || (path != "/" && path != kConsole)) return std::nullopt;
  for (const CURLUPart part : {CURLUPART_USER, CURLUPART_PASSWORD, CURLUPART_QUERY, CURLUPART_FRAGMENT}) {
    if (!PartOf(url.get(), part).empty()) return std::nullopt;
  }
  return Origin{scheme + "://" + host + (port.empty() ? "" : ":" + port), scheme == "https"};
}

Client::Client(Origin origin) : origin_(std::move(origin)), handle_(std::make_unique<Handle>()) {}

Client::~Client() = default;

void Client::AwaitTurn() {
  if (last_) std::this_thread::sleep_until(*last_ + kBetween);
  last_ = std::chrono::steady_clock::now();
}

Answer Client::Ask(const Question& question) {
  AwaitTurn();
  Answer answer;
  CURL* curl = handle_->curl;
  const std::string url = origin_.text + question.path;
  const HeaderList headers = ListOf(question.headers);
  char reason[CURL_ERROR_SIZE] = "";
  curl_easy_reset(curl);  // the connection stays
  curl_easy_setopt(curl, CURLOPT_URL, url.c_str());
  curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(curl, CURLOPT_PROXY, "");
  curl_easy_setopt(curl, CURLOPT_PATH_AS_IS, 1L);
  curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(curl, CURLOPT_TIMEOUT, kSeconds);
  curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, reason);
  curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
  curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, question.method.c_str());
  if (question.method == "HEAD") curl_easy_setopt(curl, CURLOPT_NOBODY, 1L);
  curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, KalvoTakeBody);
  curl_easy_setopt(curl, CURLOPT_WRITEDATA, &answer);
  curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, KalvoTakeHeader);
  curl_easy_setopt(curl, CURLOPT_HEADERDATA, &answer);
  const CURLcode result = curl_easy_perform(curl);
  if (result != CURLE_OK) throw std::runtime_error(*reason ? reason : curl_easy_strerror(result));
  long status = 0;
  curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
  answer.status = static_cast<int>(status);
  return answer;
}

}  // namespace kalvo::attack
