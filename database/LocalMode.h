// The database calls in local mode.
#pragma once

class CRvoDbRes;
class CString;

namespace qv {

// Run a query, or a statement without rows, on the local database of that name, opening and closing
// it when the host does not care for that itself. 0, or 1 when it failed.
[[nodiscard]] int SelectLocally(const CString& sql, CRvoDbRes& result, const char* database);
[[nodiscard]] int ExecuteLocally(const CString& sql, const char* database);

}  // namespace qv
