// What Internet promises, tested on the servers in memory here and on the system's own client in
// internet_contract_win_test.cpp.
#include <thread>

#include "platform/internet_test_support.h"
#include "platform/memory_internet.h"

namespace {

constexpr uint32_t kInsufficientBuffer = 122;
constexpr uint32_t kNameNotResolved = 12007;
constexpr uint32_t kOperationCancelled = 12017;
constexpr uint32_t kCannotConnect = 12029;
constexpr uint32_t kConnectionReset = 12031;

class MemoryInternetBed final : public InternetBed {
 public:
  MemoryInternetBed() {
    internet_.answers[refused_address()] = refusal();
    internet_.on_fetch = [this] { fetching_.set(); };
  }

  Internet& internet() override { return internet_; }
  std::string serve(const ServerAnswer& answer) override {
    std::string url = "http://server.example/" + std::to_string(internet_.answers.size());
    MemoryInternet::Answer& own = internet_.answers[url];
    own.body = answer.body;
    if (answer.length) own.length = content_length(answer.length->c_str());
    if (answer.resets) own.error = kConnectionReset;
    own.endless = answer.holds;
    return url;
  }
  std::vector<ServerRequest> requests() override {
    std::vector<ServerRequest> requests;
    for (const MemoryInternet::Request& request : internet_.requests) {
      const bool fresh = (request.flags & kFetchNoCache) != 0;
      requests.push_back(
          {"GET", request.url, request.agent, request.referrer, fresh ? "no-cache" : ""});
    }
    return requests;
  }
  std::string refused_address() override { return "http://refused.example/"; }
  void wait_until_held() override { ORLO::wait_for(fetching_, ORLO::kInfinite); }

 private:
  static MemoryInternet::Answer refusal() {
    MemoryInternet::Answer answer;
    answer.error = kCannotConnect;
    return answer;
  }

  MemoryInternet internet_;
  ORLO::Event fetching_;
};

std::string text_of(size_t size) {
  std::string text;
  text.reserve(size);
  for (size_t i = 0; i < size; ++i)
    text += static_cast<char>('a' + i % 26);
  return text;
}

ServerAnswer whole(const std::string& body) {
  return {body, std::to_string(body.size())};
}

using Calls = std::vector<std::string>;

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, InternetContract,
                         ::testing::Values(InternetBedMaker{
                             "Own", [] { return std::make_unique<MemoryInternetBed>(); }}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(InternetContract, AsksByGetWithAgentAndReferrerAsGiven) {
  EXPECT_EQ(fetch_answer(whole("x")).complete, true);
  const auto requests = bed().requests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].method, "GET");
  EXPECT_EQ(requests[0].agent, "tester 1.0");
  EXPECT_EQ(requests[0].referrer.substr(0, 20), "tester 1.0 looks for");
  EXPECT_EQ(requests[0].pragma, "");
}

TEST_P(InternetContract, AsksForAFreshCopyOnDemand) {
  const std::string url = bed().serve(whole("x"));
  fetch(internet(), url, kTestLimit, kFetchNoCache);
  const auto requests = bed().requests();
  ASSERT_EQ(requests.size(), 1u);
  EXPECT_EQ(requests[0].pragma, "no-cache");
}

TEST_P(InternetContract, FetchesABodyOfAnySize) {
  for (const size_t size : {0u, 1u, 1023u, 1024u, 1025u, 200'000u}) {
    SCOPED_TRACE(size);
    const Fetched fetched = fetch_answer(whole(text_of(size)));
    EXPECT_EQ(fetched.complete, true);
    EXPECT_EQ(fetched.body, text_of(size));
  }
}

TEST_P(InternetContract, TakesAnyBytes) {
  std::string bytes;
  for (int i = 0; i < 256; ++i)
    bytes += static_cast<char>(i);
  EXPECT_EQ(fetch_answer(whole(bytes)).body, bytes);
}

TEST_P(InternetContract, CountsABodyWithoutLengthAsComplete) {
  const Fetched fetched = fetch_answer({text_of(3000)});
  EXPECT_EQ(fetched.complete, true);
  EXPECT_EQ(fetched.body, text_of(3000));
}

TEST_P(InternetContract, CountsAShortBodyAsIncomplete) {
  const Fetched fetched = fetch_answer({text_of(3000), "5000"});
  EXPECT_EQ(fetched.complete, false);
  EXPECT_EQ(fetched.body, text_of(3000));
}

TEST_P(InternetContract, CountsWhatIsLongerThanItsLengthAsIncompleteUnlessItIsCutThere) {
  const Fetched fetched = fetch_answer({text_of(3000), "1000"});
  EXPECT_EQ(fetched.complete, fetched.body.size() == 1000);
  EXPECT_EQ(fetched.body, text_of(fetched.body.size()));
}

TEST_P(InternetContract, CountsAnErrorPageAsComplete) {
  for (const int status : {404, 401, 500}) {
    ServerAnswer page = whole("not here");
    page.status = status;
    const Fetched fetched = fetch_answer(page);
    EXPECT_EQ(fetched.complete, true) << status;
    EXPECT_EQ(fetched.body, "not here");
  }
}

TEST_P(InternetContract, TellsTheRangeAndThenThePositionAfterEachBlock) {
  EXPECT_EQ(fetch_answer(whole(text_of(3500))).progress,
            (Calls{"range 3", "position 1", "position 2", "position 3", "position 3"}));
}

TEST_P(InternetContract, HasARangeOfZeroBelow1024Bytes) {
  EXPECT_EQ(fetch_answer(whole(text_of(1023))).progress, (Calls{"range 0", "position 0"}));
}

TEST_P(InternetContract, HasARangeBeyond16Bits) {
  const Fetched fetched = fetch_answer({"x", "2147483647"});
  EXPECT_EQ(fetched.complete, false);
  EXPECT_EQ(fetched.progress, (Calls{"range 2097151", "position 0"}));
}

TEST_P(InternetContract, TellsNoRangeWithoutLength) {
  EXPECT_EQ(fetch_answer({text_of(1024)}).progress, Calls{"position 1"});
}

TEST_P(InternetContract, GoesWithoutProgress) {
  const std::string url = bed().serve(whole(text_of(2000)));
  FetchRequest request;
  request.url = url.c_str();
  request.limit = kTestLimit;
  std::ostringstream body;
  EXPECT_TRUE(internet().fetchUrl(request, body, nullptr));
  EXPECT_EQ(body.str(), text_of(2000));
}

TEST_P(InternetContract, CountsALengthOfMinus1OrBeyondAnIntAsNone) {
  for (const char* length : {"2147483648", "4294967296", "99999999999999999999", "-1",
                             "9999999999999999999999999999999999999999"}) {
    const Fetched fetched = fetch_answer({"abc", length});
    EXPECT_EQ(fetched.complete, true) << length;
    EXPECT_EQ(fetched.body, "abc");
    EXPECT_EQ(fetched.progress, Calls{"position 0"}) << length;
  }
}

TEST_P(InternetContract, CountsABodyToldAsLessThanNothingAsIncomplete) {
  for (const char* length : {"-2", "-5", "-2147483648"})
    EXPECT_EQ(fetch_answer({"abc", length}).complete, false) << length;
}

TEST_P(InternetContract, ReadsALengthUpToWhereItIsANumber) {
  EXPECT_EQ(fetch_answer({"abc", "3 bytes"}).complete, true);
  const Fetched fetched = fetch_answer({"abc", "abc"});
  EXPECT_EQ(fetched.complete, false);
  EXPECT_EQ(fetched.progress, (Calls{"range 0", "position 0"}));
}

TEST_P(InternetContract, EndsABodyAtTheLimit) {
  for (const size_t limit : {0u, 1u, 1024u, 2500u, 2999u}) {
    const Fetched fetched = fetch_answer(whole(text_of(3000)), limit);
    EXPECT_EQ(fetched.complete, false) << limit;
    EXPECT_EQ(fetched.body, text_of(limit));
  }
  EXPECT_EQ(fetch_answer(whole(text_of(3000)), 3000).complete, true);
}

TEST_P(InternetContract, EndsABodyWithoutEndAtTheLimit) {
  ServerAnswer answer{text_of(100'000)};
  answer.holds = true;
  const Fetched fetched = fetch_answer(answer, 50'000);
  EXPECT_EQ(fetched.complete, false);
  EXPECT_EQ(fetched.body, text_of(50'000));
}

TEST_P(InternetContract, TakesNoNoticeOfAStreamThatTakesNothing) {
  const std::string url = bed().serve(whole(text_of(3000)));
  FetchRequest request;
  request.url = url.c_str();
  request.limit = kTestLimit;
  std::ostringstream body;
  body.setstate(std::ios::failbit);
  EXPECT_TRUE(internet().fetchUrl(request, body, nullptr));
}

TEST_P(InternetContract, FailsIfAConnectionIsRefused) {
  const Fetched fetched = fetch(internet(), bed().refused_address());
  EXPECT_EQ(fetched.complete, std::nullopt);
  EXPECT_EQ(fetched.error, kCannotConnect);
}

TEST_P(InternetContract, FailsIfANameIsNotResolved) {
  const Fetched fetched = fetch(internet(), "http://nobody.invalid/x");
  EXPECT_EQ(fetched.complete, std::nullopt);
  EXPECT_EQ(fetched.error, kNameNotResolved);
}

TEST_P(InternetContract, FailsIfTheLineBreaksBeforeTheHeaders) {
  ServerAnswer answer;
  answer.resets = true;
  EXPECT_EQ(fetch_answer(answer).complete, std::nullopt);
}

// Not every system tells a line that breaks from a body's end.
TEST_P(InternetContract, CountsABodyInWhichTheLineBreaksAsIncompleteIfItDoesNotFail) {
  ServerAnswer answer{text_of(3000), "5000"};
  answer.resets = true;
  const Fetched fetched = fetch_answer(answer);
  EXPECT_NE(fetched.complete, true);
  EXPECT_EQ(fetched.body, text_of(fetched.body.size()));
}

TEST_P(InternetContract, RefusesAddressesThatAreNone) {
  for (const char* url : {"", "x", "server/x.xml", "http:", "http://", "http:///x", "://x"}) {
    const Fetched fetched = fetch(internet(), url);
    EXPECT_EQ(fetched.complete, std::nullopt) << url;
    EXPECT_NE(fetched.error, 0u) << url;
  }
}

TEST_P(InternetContract, RefusesAnAddressThatDoesNotFitInto260Characters) {
  std::string url = bed().serve(whole("x")) + '?';
  url.append(260 - url.size(), 'a');
  EXPECT_EQ(fetch(internet(), url).error, kInsufficientBuffer);
  url.append(100'000, 'a');
  EXPECT_EQ(fetch(internet(), url).error, kInsufficientBuffer);
}

TEST_P(InternetContract, IsUsedAgainAfterAFailure) {
  fetch(internet(), bed().refused_address());
  EXPECT_EQ(fetch_answer(whole("x")).complete, true);
}

TEST_P(InternetContract, EndsATransferWhoseServerNeverAnswersWhenItIsCancelled) {
  ServerAnswer answer;
  answer.holds = true;
  const std::string url = bed().serve(answer);
  std::thread other([this] {
    bed().wait_until_held();
    internet().cancel();
  });
  EXPECT_EQ(fetch(internet(), url).error, kOperationCancelled);
  other.join();
}

TEST_P(InternetContract, EndsATransferThatIsStuckInItsBodyWhenItIsCancelled) {
  ServerAnswer answer{text_of(3000), "5000"};
  answer.holds = true;
  const std::string url = bed().serve(answer);
  std::thread other([this] {
    bed().wait_until_held();
    internet().cancel();
  });
  EXPECT_EQ(fetch(internet(), url).error, kOperationCancelled);
  other.join();
}

TEST_P(InternetContract, FailsAtOnceOnceItIsCancelled) {
  internet().cancel();
  internet().cancel();
  for (int i = 0; i < 2; ++i)
    EXPECT_EQ(fetch_answer(whole("x")).error, kOperationCancelled);
}

TEST_P(InternetContract, GivesThePathOfAnAddressWithWhatFollowsIt) {
  const std::pair<const char*, const char*> rows[] = {
      {"http://a.example/x.exe", "/x.exe"},
      {"https://a.example:81/b/c/x.exe", "/b/c/x.exe"},
      {"http://a.example/b/", "/b/"},
      {"http://a.example/", "/"},
      {"http://a.example", ""},
      {"http://a.example/x?y=/z", "/x?y=/z"},
      {"http://u:p@a.example/x", "/x"},
      {"http://a.example/a%2Fb", "/a%2Fb"},
      {R"(http://a.example/..\x)", R"(/..\x)"},
      {"http://a.example/x y", "/x y"},
  };
  for (const auto& [url, path] : rows)
    EXPECT_STREQ(internet().url_path(url).value_or("none").c_str(), path) << url;
}

TEST_P(InternetContract, GivesNoPathOfWhatIsNoAddress) {
  for (const char* url : {"", "x", "server/x.exe"})
    EXPECT_FALSE(internet().url_path(url).has_value()) << url;
}

TEST_P(InternetContract, GivesNoPathThatDoesNotFitInto260Characters) {
  const std::string start = "http://a.example/";
  EXPECT_EQ(internet().url_path((start + std::string(258, 'x')).c_str()).value_or("").length(),
            259u);
  EXPECT_FALSE(internet().url_path((start + std::string(259, 'x')).c_str()).has_value());
  EXPECT_FALSE(internet().url_path((start + std::string(99'999, 'x')).c_str()).has_value());
}

TEST_P(InternetContract, IsOnline) {
  EXPECT_EQ(internet().is_offline(), false);
}

TEST(MemoryInternet, AnswersAsItIsToldWhetherItIsOffline) {
  MemoryInternet internet;
  internet.offline = std::nullopt;
  EXPECT_FALSE(internet.is_offline().has_value());
  internet.offline = true;
  EXPECT_EQ(internet.is_offline(), true);
}
