// The plain records that the server sends as bytes. The library passes them on without reading
// them; their content is defined by the server and the applications.
#pragma once

// One file of the server's file store.
struct CZelkorSvrFileInfo {
  unsigned char bytes[224];
};

// One child folder.
struct CZelkorSvrFolderInfo {
  unsigned char bytes[132];
};

// One sub-store.
struct CZelkorSvrSubStoreInfo {
  unsigned char bytes[264];
};

// One group or user of the directory.
struct CZelkorSvrADObjInfo {
  unsigned char bytes[260] = {};
};

static_assert(sizeof(CZelkorSvrFileInfo) == 224 && sizeof(CZelkorSvrFolderInfo) == 132);
static_assert(sizeof(CZelkorSvrSubStoreInfo) == 264 && sizeof(CZelkorSvrADObjInfo) == 260);
