#include "ManyCalls.h"

#include <algorithm>
#include <exception>
#include <optional>
#include <span>
#include <vector>

#include "QueryExchange.h"
#include "RunQuery.h"
#include "base/call/CancelFlag.h"
#include "base/call/LastError.h"
#include "qvnetcall/ResultCodes.h"
#include "server/TransportExtensions.h"

namespace qv {

namespace {

void Note(CRvoOutcome& outcome, int code) {
  const call::Error& error = call::LastError();
  outcome.code = code;
  outcome.error_class = error.error_class;
  outcome.error_text = CString(std::string_view(error.text));
}

// Leaves the error of the first call that failed, and returns how many did.
int Conclude(std::span<const CRvoOutcome> outcomes) {
  int failed = 0;
  call::ClearError();
  for (const CRvoOutcome& one : outcomes) {
    if (one.code == result::kSuccess) continue;
    if (failed++ != 0) continue;
    call::SetError(static_cast<error::Class>(one.error_class), one.error_text.View());
  }
  return failed;
}

// Passes calls to the transport. One request and one reply serve all of them.
class Together {
 public:
  Together(const ManyRules& rules, const CRvoQuery* queries, CRvoOutcome* outcomes)
      : rules_(rules), queries_(queries), outcomes_(outcomes) {}

  void Run(int count);

 private:
  [[nodiscard]] CMsgContent* Request(std::size_t at);
  [[nodiscard]] CMsgContent* Reply();
  void Finish(std::size_t at, int result);
  // Ends the calls that the transport left over.
  void EndRest(std::size_t first);
  // Whether there is no connection, so that it makes no sense to try again for every call.
  [[nodiscard]] bool IsCutOff(std::size_t first) const;

  // Runs `act` for the transport, to which nothing may be thrown. After an exception, which
  // Run() passes on, nothing runs any more.
  template <class Act>
  static auto Guarded(void* self, Act act) noexcept -> decltype(act(*static_cast<Together*>(self)));

  const ManyRules& rules_;
  const CRvoQuery* queries_;
  CRvoOutcome* outcomes_;
  std::vector<std::size_t> sent_;  // the calls that are not empty
  std::optional<QueryExchange> request_;
  std::optional<Exchange> reply_;
  AnswerFile file_;
  std::exception_ptr failure_;
};

template <class Act>
auto Together::Guarded(void* self, Act act) noexcept
    -> decltype(act(*static_cast<Together*>(self))) {
  using Result = decltype(act(*static_cast<Together*>(self)));
  Together& calls = *static_cast<Together*>(self);
  try {
    if (!calls.failure_) return act(calls);
  } catch (...) {
    calls.failure_ = std::current_exception();
  }
  return Result();
}

void Together::Run(int count) {
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    if (queries_[i].sql->IsEmpty()) {
      Note(outcomes_[i], FailForEmptyText());
    } else {
      sent_.push_back(i);
    }
  }
  const NetworkCalls calls{
      this,
      [](int at, void* self) {
        return Guarded(self,
                       [at](Together& all) { return all.Request(static_cast<std::size_t>(at)); });
      },
      [](int, void* self) { return Guarded(self, [](Together& all) { return all.Reply(); }); },
      [](int at, int result, void* self) {
        Guarded(self,
                [at, result](Together& all) { all.Finish(static_cast<std::size_t>(at), result); });
      }};
  const int done = sent_.empty() ? 0 : SendMany(static_cast<int>(sent_.size()), calls);
  if (failure_) std::rethrow_exception(failure_);
  EndRest(static_cast<std::size_t>(done));
}

CMsgContent* Together::Request(std::size_t at) {
  const CRvoQuery& query = queries_[sent_[at]];
  request_.reset();  // gives its blocks back before others are taken
  return &request_.emplace(rules_.command, query.database, *query.sql).Request();
}

CMsgContent* Together::Reply() {
  reply_.reset();
  CMsgContent& reply = reply_.emplace(rules_.command, kDatabaseBlock, kDatabaseBlock).Reply();
  if (rules_.has_answer_file) AwaitAnswer(reply, file_);
  return &reply;
}

void Together::Finish(std::size_t at, int result) {
  const std::size_t i = sent_[at];
  KeepTransportError(Transport::kSocket, result);
  const bool is_delivered = result == result::kSuccess;
  Note(outcomes_[i],
       is_delivered ? rules_.read(queries_[i], reply_->Reply(), file_, outcomes_[i]) : result);
}

bool Together::IsCutOff(std::size_t first) const {
  if (first == 0 || first >= sent_.size()) return false;
  const CRvoOutcome& last = outcomes_[sent_[first - 1]];
  const bool is_there = last.code != result::kNotDelivered || last.error_class == error::kLocal;
  return !is_there && !rules_.is_offline();
}

void Together::EndRest(std::size_t first) {
  const bool is_cut_off = IsCutOff(first);
  for (std::size_t at = first; at < sent_.size(); ++at) {
    CRvoOutcome& outcome = outcomes_[sent_[at]];
    if (is_cut_off) {
      const CRvoOutcome& last = outcomes_[sent_[first - 1]];
      outcome.code = last.code;
      outcome.error_class = last.error_class;
      outcome.error_text = last.error_text;
    } else {
      Note(outcome, rules_.alone(queries_[sent_[at]], outcome));
    }
  }
}

}  // namespace

int RunMany(const ManyRules& rules, const CRvoQuery* queries, CRvoOutcome* outcomes, int count) {
  if (rules.together && count > 1 && !call::IsCancelled()) {
    Together(rules, queries, outcomes).Run(count);
  } else {
    for (int i = 0; i < count; ++i) Note(outcomes[i], rules.alone(queries[i], outcomes[i]));
  }
  return Conclude({outcomes, static_cast<std::size_t>(std::max(count, 0))});
}

}  // namespace qv
