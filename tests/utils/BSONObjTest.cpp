#include "bson/BSONObj.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using bson::BSONObj;
using bson::BSONObjBuilder;

namespace {

constexpr std::int64_t MAX_LONG = std::numeric_limits<std::int64_t>::max();

BSONObj sample() {
  BSONObjBuilder inside;
  inside.append("deep", "合约");
  BSONObjBuilder builder;
  builder.append("i", -7).append("l", MAX_LONG).append("d", 2.5).append("b", true).append("s", "text");
  builder.append("o", inside.obj()).append("nan", std::nan("")).append("huge", -1e300);
  builder.append("z", std::string("a\0b", 3));
  return builder.obj();
}

/// `count` documents inside each other, by field type 3, or as the scopes of code values, by field type 15.
std::string nested(int count, char type) {
  std::string bytes("\5\0\0\0\0", 5);
  const auto number = [](std::size_t n) {
    std::string text;
    for (int shift = 0; shift < 32; shift += 8) text.push_back(static_cast<char>(n >> shift));
    return text;
  };
  const std::string code = number(1) + std::string(1, '\0');
  for (int i = 0; i < count; ++i) {
    if (type == 15) bytes = number(4 + code.size() + bytes.size()) + code + bytes;
    bytes = number(4 + 3 + bytes.size() + 1) + type + "a" + '\0' + bytes + '\0';
  }
  return bytes;
}

}  // namespace

TEST(BSONObj, ConvertsFields) {
  const BSONObj object = sample();
  const struct {
    const char* name;
    std::int64_t asLong;
    int asInt;
    double asDouble;
    const char* asText;
  } cases[] = {{"i", -7, -7, -7.0, ""},
               {"l", MAX_LONG, std::numeric_limits<int>::max(), static_cast<double>(MAX_LONG), ""},
               {"d", 2, 2, 2.5, ""},
               {"b", 0, 0, 0.0, ""},
               {"s", 0, 0, 0.0, "text"},
               {"o", 0, 0, 0.0, ""},
               {"huge", std::numeric_limits<std::int64_t>::min(), std::numeric_limits<int>::min(), -1e300, ""},
               {"absent", 0, 0, 0.0, ""},
               {"", 0, 0, 0.0, ""}};
  for (const auto& c : cases) {
    EXPECT_EQ(object.getLong(c.name), c.asLong) << c.name;
    EXPECT_EQ(object.getIntField(c.name), c.asInt) << c.name;
    EXPECT_EQ(object.getDouble(c.name), c.asDouble) << c.name;
    EXPECT_EQ(object.getStringField(c.name), c.asText) << c.name;
    EXPECT_EQ(object.getBoolField(c.name), std::string_view(c.name) == "b") << c.name;
  }
  EXPECT_EQ(object.getLong("nan"), 0);
  EXPECT_EQ(object.getStringField("z"), std::string("a\0b", 3));
  EXPECT_TRUE(object.hasField("z"));
  EXPECT_FALSE(object.hasField("deep"));
}

TEST(BSONObj, PrintsAndCopies) {
  EXPECT_EQ(BSONObj().objsize(), 5);
  EXPECT_TRUE(BSONObj().isEmpty());
  EXPECT_EQ(BSONObj().toString(), "{ }");
  BSONObjBuilder builder;
  const BSONObj before = builder.append("name", "融资").append("n", 3).obj();
  builder.append("bad", std::string("x\xff"));
  EXPECT_EQ(before.toString(), R"({ "name" : "融资", "n" : 3 })");
  // Bytes that are no UTF-8 do not make the document unreadable.
  bool ok = false;
  const BSONObj object = builder.obj();
  EXPECT_EQ(BSONObj::fromBytes(object.objdata(), object.objsize(), &ok).getStringField("bad"), "x\xEF\xBF\xBD");
  EXPECT_TRUE(ok);
}

TEST(BSONObj, DamagedBytesGiveTheEmptyDocument) {
  const BSONObj object = sample();
  const std::string bytes(object.objdata(), static_cast<std::size_t>(object.objsize()));
  bool ok = false;
  EXPECT_EQ(BSONObj::fromBytes(bytes.data(), bytes.size(), &ok).toString(), object.toString());
  EXPECT_TRUE(ok);
  for (std::size_t size = 0; size < bytes.size(); ++size) {
    // A buffer of its own, so that the address sanitizer sees a read beyond it.
    const std::vector<char> part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_TRUE(BSONObj::fromBytes(part.data(), size, &ok).isEmpty()) << size;
    EXPECT_FALSE(ok) << size;
  }
  int refused = 0;
  for (std::size_t i = 0; i < bytes.size() * 8; ++i) {
    std::vector<char> flipped(bytes.begin(), bytes.end());
    flipped[i / 8] = static_cast<char>(flipped[i / 8] ^ (1 << (i % 8)));
    const BSONObj result = BSONObj::fromBytes(flipped.data(), flipped.size(), &ok);
    EXPECT_EQ(result.isEmpty(), !ok) << i;
    if (!ok) ++refused;
    for (const char* name : {"i", "l", "d", "s", "o"}) EXPECT_LT(result.getStringField(name).size(), bytes.size());
    EXPECT_FALSE(result.toString().empty());
  }
  EXPECT_GT(refused, 40);  // at least every flip of the length does damage
}

TEST(BSONObj, RefusesDocumentsTooDeepToRead) {
  for (const char type : {char(3), char(15)}) {
    const struct {
      int depth;
      bool readable;
    } cases[] = {{20, true}, {2000, false}};
    for (const auto& c : cases) {
      const std::string bytes = nested(c.depth, type);
      bool ok = !c.readable;
      EXPECT_EQ(BSONObj::fromBytes(bytes.data(), bytes.size(), &ok).isEmpty(), !c.readable) << int(type) << c.depth;
      EXPECT_EQ(ok, c.readable);
    }
  }
}
