// Changes data: several statements that are run all or not at all. Usage: batch SERVER PORT
#include <qvnetcall/QvNetCall4.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace {

// Runs the statements as one batch and says what came of it.
int RunBatch(std::initializer_list<const char*> statements) {
  CStringArray batch;
  for (const char* statement : statements) batch.Add(statement);
  const int result = CRvoDatabase::ExecuteMultiSQL(&batch, "DESIGNDB");
  if (result == qv::result::kSuccess) {
    std::printf("all %d statements were run\n", static_cast<int>(batch.GetSize()));
  } else if (result > qv::result::kBatchRefused) {
    // The server counts from 1. It has undone the statements before this one.
    std::printf("statement %d was refused, so none was run: %s\n",
                result - qv::result::kBatchRefused, CRvoServer::GetLastErrorText().GetString());
  } else if (result == qv::result::kNotDelivered) {
    std::printf("the server was not reached, so none was run\n");
  } else {
    // After kOutcomeUnknown and kBadReply the batch may have been run: look before you repeat it.
    std::printf("it is not known whether they were run: result %d\n", result);
  }
  return result;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return std::fputs("usage: batch SERVER PORT\n", stderr), 2;
  CRvoServer::InitNet();
  CRvoServer::SetConinfo(argv[1], std::atol(argv[2]));

  const int good = RunBatch({"update projects set priority = 1 where id = 1",
                             "update projects set priority = 2 where id = 2"});
  // There is no such table. The first statement would be fine, but has no effect either.
  const int bad = RunBatch(
      {"update projects set priority = 9 where id = 1", "update no_such_table set priority = 9"});

  CRvoDbRes rows;
  const CString sql = "select priority from projects where id = 1";
  const int read = CRvoDatabase::SelectSQL(&sql, &rows, "DESIGNDB", 0);
  std::printf("the priority of the first project is %ld\n", rows._int(0, "priority"));

  CRvoServer::FinitNet();
  const bool as_expected = good == qv::result::kSuccess && bad == qv::result::kBatchRefused + 2;
  return as_expected && read == qv::result::kSuccess ? 0 : 1;
}
