// The pieces of the S3 client that need no server.
#include <gtest/gtest.h>

#include <string>

#include "components/s3/S3Endpoint.h"
#include "components/s3/S3Parts.h"
#include "components/s3/S3Signature.h"
#include "components/s3/S3Xml.h"

namespace qv::components {

namespace {

// The signature that another implementation computes for the same request.
TEST(S3SignatureTest, IsThatOfAnotherSigner) {
  const auto endpoint = S3Endpoint::Parse("store.example", 9000, 0);
  // Names that sort differently when they are encoded.
  auto wire = endpoint->Address({.bucket = "bucket",
                                 .key = "a b+%~*'()/图.dwg",
                                 .query = {{"z", ""}, {"a=", "1"}, {"a-", "&"}, {"a", "/ +"}},
                                 .headers = {{"range", "bytes=0-9"}}});
  ASSERT_TRUE(wire);
  EXPECT_EQ(wire->Url(),
            "https://store.example:9000/bucket/a%20b%2B%25~%2A%27%28%29/%E5%9B%BE.dwg"
            "?a=%2F%20%2B&a%3D=1&a-=%26&z=");
  Sign(*wire, {"ACCESS", "a+secret/key", "eu-1"}, std::string(64, '0'), 1700000000);
  EXPECT_EQ(wire->headers.back().second,
            "AWS4-HMAC-SHA256 Credential=ACCESS/20231114/eu-1/s3/aws4_request, "
            "SignedHeaders=host;range;x-amz-content-sha256;x-amz-date, "
            "Signature=3056826dd08d585f0d175b58105aa681035b5d7c45d2a5cdfa4225ed52558bc8");
}

TEST(S3EndpointTest, TakesHostsAndNothingElse) {
  struct Case {
    const char* host;
    std::uint16_t port;
    long style;
    const char* url;  // of "b-1/k"; empty when there is none
  };
  for (const Case& one :
       {Case{"Store.Example", 0, 0, "https://store.example/b-1/k"},
        Case{"store.example", 443, 1, "https://b-1.store.example/k"},
        Case{"store.example", 80, 0, "https://store.example:80/b-1/k"},
        Case{"HTTP://store.example", 80, 0, "http://store.example/b-1/k"},
        Case{"http://store.example", 65535, 1, "http://b-1.store.example:65535/k"},
        Case{"https://[::1]", 9000, 0, "https://[::1]:9000/b-1/k"}, Case{"[::1]", 9000, 1, ""},
        Case{"10.0.0.1", 0, 1, ""}, Case{"", 0, 0, ""}, Case{"http://", 0, 0, ""},
        Case{"https://http://a", 0, 0, ""}, Case{"http://https://a", 0, 0, ""},
        Case{"::1", 0, 0, "https://[::1]/b-1/k"}, Case{"a:80", 0, 0, ""}, Case{"a", 0, -1, ""}}) {
    const auto endpoint = S3Endpoint::Parse(one.host, one.port, one.style);
    const auto wire = endpoint ? endpoint->Address({.bucket = "b-1", .key = "k"}) : std::nullopt;
    EXPECT_EQ(wire ? wire->Url() : "", one.url) << one.host;
  }
  const auto in_host = S3Endpoint::Parse("a", 0, 1);
  for (const char* const bucket : {"B", "b_c", "-b", "b.", "b..c", "b c", "b@c"}) {
    EXPECT_FALSE(in_host->Address({.bucket = bucket, .key = "k"})) << bucket;
  }
  EXPECT_FALSE(S3Endpoint::Parse("a", 0, 0)->Address({.bucket = "..", .key = "k"}));
}

TEST(S3PathTest, NamesAnObjectOrAFolder) {
  EXPECT_EQ(S3Path::OfObject("//b/k//l"), (S3Path{"b", "k//l"}));
  EXPECT_EQ(S3Path::OfFolder("b/k"), (S3Path{"b", "k/"}));
  EXPECT_TRUE(S3Path::OfObject("b/" + std::string(1024, 'k')));
  for (const std::string& path : {std::string("b"), std::string("b/"), std::string("b/k/"),
                                  "b/" + std::string(1025, 'k'), std::string("b/\xCD\xBC\xD6")}) {
    EXPECT_FALSE(S3Path::OfObject(path)) << path;
  }
}

TEST(S3PartsTest, DividesAnObjectIntoAtMostTenThousandParts) {
  for (const std::uint64_t total : {1ULL, 100ULL, 101ULL, 1000000ULL, 1000001ULL, 1ULL << 45}) {
    const PartPlan plan = PartPlan::For(total, 100);
    EXPECT_LE(plan.Count(), 10000);
    std::uint64_t end = 0;
    for (int number = 1; number <= plan.Count(); ++number) {
      EXPECT_EQ(plan.Start(number), end);
      EXPECT_GT(plan.Length(number), 0U);
      end += plan.Length(number);
    }
    EXPECT_EQ(end, total);
  }
}

TEST(S3XmlTest, ReadsOnlyWhatItLooksFor) {
  const auto listing = ReadListing(
      "<?xml version='1.0'?><ListBucketResult><EncodingType>url</EncodingType><Contents><Key>a%2Fb+"
      "%25%</Key></Contents><IsTruncated>false</IsTruncated><NextContinuationToken>x"
      "</NextContinuationToken></ListBucketResult>");
  ASSERT_TRUE(listing);
  EXPECT_EQ(listing->keys, std::vector<std::string>{"a/b %%"});
  EXPECT_FALSE(listing->next);
  EXPECT_FALSE(ReadListing("<ListBucketResult><Contents>"));
  EXPECT_FALSE(
      ReadParts("<ListPartsResult><Part><PartNumber>1x</PartNumber><Size>1</Size>"
                "<ETag>e</ETag></Part></ListPartsResult>"));
  EXPECT_EQ(DeletionXml({"<&>"}),
            "<Delete><Quiet>true</Quiet><Object><Key>&lt;&amp;&gt;</Key></Object></Delete>");
}

TEST(S3XmlTest, IsNotHurtByWhatAServerMakesUp) {
  std::string deep;
  for (int i = 0; i < 500000; ++i) deep += "<a>";
  EXPECT_FALSE(ReadErrorCode(deep));
  for (int i = 0; i < 500000; ++i) deep += "</a>";
  EXPECT_FALSE(ReadErrorCode(deep));
  const auto code = ReadErrorCode(
      "<!DOCTYPE Error [<!ENTITY a 'aaaaaaaaaa'><!ENTITY b '&a;&a;&a;&a;'><!ENTITY f SYSTEM "
      "'file:///etc/passwd'>]><Error><Code>&b;&f;</Code></Error>");
  EXPECT_EQ(code.value_or("&b;&f;"), "&b;&f;") << "an entity was expanded";
}

}  // namespace

}  // namespace qv::components
