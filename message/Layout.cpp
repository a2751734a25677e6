// Pins the memory layout that this library, the transport libraries and their authors share. A
// failure here means that a transport built yesterday would read the wrong bytes.
#include <cstddef>

#include "MsgContent.h"

struct MessageLayout {
  static_assert(sizeof(void*) == 8, "the layout is pinned for 64-bit systems");

  static_assert(offsetof(CAutoBuf, data_) == 8);
  static_assert(offsetof(CAutoBuf, size_) == 16);
  static_assert(sizeof(CAutoBuf) == 24);

  static_assert(offsetof(CQvMemFile, grow_bytes_) == 8);
  static_assert(offsetof(CQvMemFile, position_) == 12);
  static_assert(offsetof(CQvMemFile, buffer_size_) == 16);
  static_assert(offsetof(CQvMemFile, file_size_) == 20);
  static_assert(offsetof(CQvMemFile, buffer_) == 24);
  static_assert(offsetof(CQvMemFile, auto_delete_) == 32);
  static_assert(sizeof(CQvMemFile) == 40);

  static_assert(offsetof(CFIFOClass, data_) == 8);
  static_assert(offsetof(CFIFOClass, capacity_) == 16);
  static_assert(offsetof(CFIFOClass, read_position_) == 20);
  static_assert(offsetof(CFIFOClass, write_position_) == 24);
  static_assert(sizeof(CFIFOClass) == 32);

  static_assert(offsetof(CMsgContent, queue_) == 8);
  static_assert(offsetof(CMsgContent, overflow_) == 40);
  static_assert(offsetof(CMsgContent, block_) == 80);
  static_assert(offsetof(CMsgContent, block_size_) == 88);
  static_assert(offsetof(CMsgContent, command_) == 96);
  static_assert(offsetof(CMsgContent, word1_) == 104);
  static_assert(offsetof(CMsgContent, word2_) == 112);
  static_assert(offsetof(CMsgContent, byte_) == 120);
  static_assert(offsetof(CMsgContent, name_) == 128);
  static_assert(offsetof(CMsgContent, payload_) == 136);
  static_assert(offsetof(CMsgContent, file_name_) == 144);
  static_assert(offsetof(CMsgContent, msg_flag_) == 152);
  static_assert(offsetof(CMsgContent, file_flag_) == 153);
  static_assert(sizeof(CMsgContent) == 160);
};
