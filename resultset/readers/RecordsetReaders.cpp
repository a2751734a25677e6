#include "RecordsetReaders.h"

#include "Dialects.h"
#include "TextWindow.h"

namespace qv {

namespace {

bool Read(const TextSource& source, decltype(ReadRowsetText)& read, CRvoDbRes& result,
          const tagTEMPFILEINFO& files) {
  TextWindow& text = KeptTextWindow();
  text.Start(source, 0, {PieceBytes(), PieceBytes()});
  return NoteReading(read(text, ResultTable::Of(result), files));
}

}  // namespace

bool ReadRowsetFile(const char* path, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  return Read(TextSource::OfFile(path), ReadRowsetText, result, files);
}

bool ReadSchemaFile(const char* path, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  return Read(TextSource::OfFile(path), ReadSchemaText, result, files);
}

bool ReadRowset(std::string_view bytes, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  return Read(TextSource::OfBytes(bytes), ReadRowsetText, result, files);
}

bool ReadSchema(std::string_view bytes, CRvoDbRes& result, const tagTEMPFILEINFO& files) {
  return Read(TextSource::OfBytes(bytes), ReadSchemaText, result, files);
}

}  // namespace qv
