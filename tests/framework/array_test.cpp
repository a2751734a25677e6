#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <string>

#include "qvnetcall/framework/MapStringToString.h"
#include "qvnetcall/framework/StringArray.h"

namespace {

TEST(Array, ThrowsOutsideItsBounds) {
  CArray<double, double> array;
  EXPECT_THROW(static_cast<void>(array[0]), CInvalidArgException);
  EXPECT_EQ(array.Add(1.5), 0);
  EXPECT_THROW(static_cast<void>(array.GetAt(1)), CInvalidArgException);
  EXPECT_THROW(array.SetAt(-1, 0), CInvalidArgException);
  EXPECT_THROW(array.SetSize(-1), CInvalidArgException);
  EXPECT_THROW(array.InsertAt(0, 0, INT_MAX), CInvalidArgException);
  EXPECT_THROW(array.RemoveAt(0, 2), CInvalidArgException);
  EXPECT_THROW(array.RemoveAt(1, INT_MAX), CInvalidArgException);
  EXPECT_EQ(array.GetSize(), 1);
}

TEST(Array, GrowsInsertsAndRemoves) {
  CStringArray names;
  names.SetAtGrow(2, "c");
  EXPECT_EQ(names.GetCount(), 3);
  EXPECT_TRUE(names[0].IsEmpty());
  names.InsertAt(0, names[2], 2);  // an element of its own
  names.InsertAt(7, "end");
  names.RemoveAt(2, 2);
  names.Append(names);
  CString all;
  for (int i = 0; i < names.GetSize(); ++i) all += names[i] + ",";
  EXPECT_EQ(all, "c,c,c,,,end,c,c,c,,,end,");
  names.SetSize(1);
  EXPECT_EQ(names.GetUpperBound(), 0);
}

TEST(Map, LooksUpAndIterates) {
  CMapStringToString map;
  map.SetAt("A", "Alpha");
  map["B"] = "Beta";
  map.SetAt("A", "Again");
  CString value("kept");
  EXPECT_FALSE(map.Lookup("a", value));
  EXPECT_EQ(value, "kept");
  EXPECT_TRUE(map.Lookup("A", value));
  std::map<std::string, std::string> seen;
  CString key;
  for (POSITION at = map.GetStartPosition(); at != nullptr;) {
    map.GetNextAssoc(at, key, value);
    seen[key.GetString()] = value.GetString();
  }
  EXPECT_EQ(seen, (std::map<std::string, std::string>{{"A", "Again"}, {"B", "Beta"}}));
  EXPECT_TRUE(map.RemoveKey("A") && !map.RemoveKey("A"));
  EXPECT_EQ(map.GetCount(), 1);
  POSITION end = nullptr;
  EXPECT_THROW(map.GetNextAssoc(end, key, value), CInvalidArgException);
}

}  // namespace
