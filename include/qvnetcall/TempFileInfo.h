// Where the library puts temporary files and the files of binary cells.
#pragma once

// Three NUL-terminated texts. `path` is a folder and ends with the platform's separator when it
// comes from the library itself; `prefix` starts each file's name; `ext` is its extension, without
// the dot.
struct tagTEMPFILEINFO {
  char path[260];
  char prefix[260];
  char ext[260];
};
