// Where the library puts temporary files and the files of binary cells.
#pragma once

// Three texts, each ending with a NUL: `path` is a folder, `prefix` the start of each file's name,
// `ext` its extension without the dot. In the record that the library itself fills, `path` ends
// with the platform's separator.
struct tagTEMPFILEINFO {
  char path[260];
  char prefix[260];
  char ext[260];
};
