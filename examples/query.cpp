// Runs a query and prints its rows. Usage: query SERVER PORT
//
// The sample data of the stand-in server has what it asks for:
//     qvstandin --data DIR --port 4000 &
//     query 127.0.0.1 4000
#include <qvnetcall/QvNetCall4.h>

#include <cstdio>
#include <cstdlib>

int main(int argc, char** argv) {
  if (argc != 3) return std::fputs("usage: query SERVER PORT\n", stderr), 2;
  CRvoServer::InitNet();
  CRvoServer::SetConinfo(argv[1], std::atol(argv[2]));

  CRvoDbRes rows;
  const CString sql = "select number, title, size_bytes from documents where project_id = 1";
  const int result = CRvoDatabase::SelectSQL(&sql, &rows, "DESIGNDB", 0);
  if (result != qv::result::kSuccess) {
    const CString reason = CRvoServer::GetLastErrorText();
    std::fprintf(stderr, "the query failed: %s\n", reason.GetString());
  }
  for (int row = 0; row < rows.GetRecordCount(); ++row) {
    // _text gives every digit; of a null cell it gives an empty text.
    const CString size = rows.IsNull(row, "size_bytes") ? "?" : rows._text(row, "size_bytes");
    std::printf("%s: %s, %s bytes\n", rows._text(row, "number").GetString(),
                rows._text(row, "title").GetString(), size.GetString());
  }

  CRvoServer::FinitNet();
  return result == qv::result::kSuccess ? 0 : 1;
}
