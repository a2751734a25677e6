#include "RecordsetReaders.h"

#include "Dialects.h"
#include "FileText.h"

namespace qv {

namespace {

// Reads what `load` put into the kept buffer.
template <class Load>
bool LoadAndRead(Load load, decltype(ReadRowsetText)& read, CRvoDbRes& result,
                 const tagTEMPFILEINFO& files) {
  FileText& text = KeptFileText();
  Reading reading = load(text);
  if (reading == Reading::kDone) reading = read(text.View(), ResultTable::Of(result), files);
  return NoteReading(reading);
}

auto FromFile(const char* path) {
  return [path](FileText& text) { return text.Load(path); };
}

auto FromBytes(std::string_view bytes) {
  return [bytes](FileText& text) { return text.Copy(bytes); };
}

}  // namespace

bool ReadRowsetFile(const char* path, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  return LoadAndRead(FromFile(path), ReadRowsetText, result, files);
}

bool ReadSchemaFile(const char* path, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  return LoadAndRead(FromFile(path), ReadSchemaText, result, files);
}

bool ReadRowset(std::string_view bytes, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  return LoadAndRead(FromBytes(bytes), ReadRowsetText, result, files);
}

bool ReadSchema(std::string_view bytes, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  return LoadAndRead(FromBytes(bytes), ReadSchemaText, result, files);
}

}  // namespace qv
