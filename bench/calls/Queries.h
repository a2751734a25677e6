// What is asked of the databases that bench/calls/servers fills.
#pragma once

#include <string>

namespace qv::bench {

inline const std::string kTwoRows =
    "select id, number, title, revision, weight, changed from parts where id in (1, 2)";
inline const std::string kThousandRows =
    "select id, number, title, revision, weight, changed from parts";
inline const std::string kManyRows =
    "select id, number, title, revision, weight, changed from many_parts";
inline const std::string kUpdateNone = "update parts set revision = 1 where id = -1";
inline const std::string kCall = "call two_parts(1, 2)";
// The same call in the words of PostgreSQL.
inline const std::string kFunction = "select * from two_parts(1, 2)";

}  // namespace qv::bench
