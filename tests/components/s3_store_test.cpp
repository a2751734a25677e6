// Objects that are stored in parts; hosts cannot set the limits.
#include <gmock/gmock.h>

#include "S3ServerTest.h"
#include "components/s3/S3Store.h"

namespace qv::components {

namespace {

using testing::SizeIs;

class S3StoreTest : public S3ServerTest, protected TransferMeter {
 protected:
  static constexpr std::size_t kBytes = 95000;

  // Objects of 20,000 bytes or more are stored in parts of 10,000 bytes.
  S3Store Store() const {
    TransferSettings settings;
    settings.part_bytes = 10000;
    const S3Limits limits{.single_upload = 20000, .single_copy = 20000, .part_of_copy = 10000};
    const auto endpoint = S3Endpoint::Parse("http://127.0.0.1", Port(), 0);
    return S3Store(S3Session(*endpoint, {kAccess, kSecret, "us-east-1"}, settings), limits);
  }
  QvTransferResult Upload(S3Store& store, const std::string& bytes) {
    return store.Upload(folder_.Write("a", bytes), "bucket/a", resume_, *this);
  }
  std::string Object(S3Store& store, const std::string& path) {
    Resume resume;
    const QvTransferResult result = store.Download(path, Local("got"), resume, *this);
    return result == QvTransfer_Success ? BytesOf(Local("got")) : "no object";
  }
  bool Moved(std::uint64_t done, std::uint64_t total) override {
    most_ = std::max(most_, done);
    EXPECT_LE(done, total == 0 ? kBytes : total);
    return done < stop_at_;
  }

  Resume resume_;
  std::uint64_t most_ = 0;
  std::uint64_t stop_at_ = kBytes + 1;
};

TEST_F(S3StoreTest, SendsOnlyThePartsThatTheServerLacks) {
  Serve({"1 cut-request 5000 ^PUT .*partNumber=7", "1 status 500 ^PUT .*partNumber=9"});
  S3Store store = Store();
  const std::string bytes = Bytes(kBytes);
  const std::string file = folder_.Write("a", bytes);
  EXPECT_EQ(store.Upload(file, "bucket/a", resume_, *this), QvTransfer_Broken);
  EXPECT_EQ(store.Upload(file, "bucket/a", resume_, *this), QvTransfer_Broken);
  EXPECT_EQ(Object(store, "bucket/a"), "no object");
  EXPECT_EQ(store.Upload(file, "bucket/a", resume_, *this), QvTransfer_Success);
  EXPECT_TRUE(resume_.IsEmpty());
  EXPECT_EQ(most_, kBytes);
  EXPECT_THAT(Requests("^PUT .* 200 "), SizeIs(10));
  EXPECT_TRUE(Object(store, "bucket/a") == bytes);
}

TEST_F(S3StoreTest, MixesNoStatesOfAFile) {
  Serve({"1 status 500 ^PUT .*partNumber=2"});
  S3Store store = Store();
  EXPECT_EQ(Upload(store, Bytes(kBytes, 1)), QvTransfer_Broken);
  const std::string changed = Bytes(kBytes - 1, 2);
  EXPECT_EQ(Upload(store, changed), QvTransfer_Success);
  EXPECT_TRUE(Object(store, "bucket/a") == changed);
  EXPECT_THAT(Requests("^DELETE .*uploadId.* 204"), SizeIs(1));
}

TEST_F(S3StoreTest, SendsAPartAgainThatTheServerHasInAnotherLength) {
  Serve({"1 status 500 ^PUT .*partNumber=2",
         "1 replace <ListPartsResult><Part><PartNumber>1</PartNumber><Size>9999</Size>"
         "<ETag>x</ETag></Part></ListPartsResult> ^GET .*uploadId"});
  S3Store store = Store();
  const std::string file = folder_.Write("a", Bytes(kBytes));
  EXPECT_EQ(store.Upload(file, "bucket/a", resume_, *this), QvTransfer_Broken);
  EXPECT_EQ(store.Upload(file, "bucket/a", resume_, *this), QvTransfer_Success);
}

TEST_F(S3StoreTest, StartsAnewWhenTheServerHasForgottenTheParts) {
  Serve({"1 status 500 ^PUT .*partNumber=2"});
  S3Store store = Store();
  const std::string file = folder_.Write("a", Bytes(kBytes));
  EXPECT_EQ(store.Upload(file, "bucket/a", resume_, *this), QvTransfer_Broken);
  EXPECT_TRUE(store.Abandon("bucket/a", resume_));
  EXPECT_EQ(store.Upload(file, "bucket/a", resume_, *this), QvTransfer_Success);
}

struct Ending {
  const char* fault;
  QvTransferResult result;
  bool is_kept;
};

TEST_F(S3StoreTest, KeepsPartsWhileTheyCanBeOfUse) {
  for (const Ending& ending :
       {Ending{"1 status 403 ^PUT .*partNumber=2", QvTransfer_Refused, true},
        Ending{"1 error InternalError ^POST .*uploadId", QvTransfer_Broken, true},
        Ending{"1 replace <html/> ^POST .*uploadId", QvTransfer_BadAnswer, true},
        Ending{"1 error InvalidPart ^POST .*uploadId", QvTransfer_Broken, false},
        Ending{"1 replace <html/> ^POST .*uploads", QvTransfer_BadAnswer, false}}) {
    SCOPED_TRACE(ending.fault);
    Serve({ending.fault});
    S3Store store = Store();
    resume_ = {};
    EXPECT_EQ(Upload(store, Bytes(kBytes)), ending.result);
    EXPECT_EQ(resume_.IsEmpty(), !ending.is_kept);
    EXPECT_EQ(Object(store, "bucket/a"), "no object");
    EXPECT_EQ(Upload(store, "short"), QvTransfer_Success);
    EXPECT_TRUE(resume_.IsEmpty());
  }
  EXPECT_THAT(Requests("^DELETE .* 204"), SizeIs(4));
}

TEST_F(S3StoreTest, CopiesInParts) {
  Serve({"1 error SlowDown ^PUT .*partNumber=3"});
  S3Store store = Store();
  const std::string bytes = Bytes(kBytes);
  ASSERT_EQ(Upload(store, bytes), QvTransfer_Broken);
  ASSERT_EQ(store.Upload(Local("a"), "bucket/a", resume_, *this), QvTransfer_Success);
  EXPECT_EQ(store.Copy("bucket/a", "bucket/b", resume_, *this), QvTransfer_Success);
  EXPECT_TRUE(Object(store, "bucket/b") == bytes);
  EXPECT_THAT(Requests("^PUT /bucket/b\\?partNumber.* 200 0 "), SizeIs(10));
}

TEST_F(S3StoreTest, StopsWhenItIsToldTo) {
  Serve();
  S3Store store = Store();
  stop_at_ = 45000;
  EXPECT_EQ(Upload(store, Bytes(kBytes)), QvTransfer_Stopped);
  EXPECT_FALSE(resume_.IsEmpty());
  EXPECT_EQ(resume_.done, 40000);
}

}  // namespace

}  // namespace qv::components
