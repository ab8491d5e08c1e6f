#include "bson/BSONObj.h"

#include <QString>

#include <bson/bson.h>

#include <cassert>
#include <limits>
#include <memory>

namespace bson {

namespace {

constexpr unsigned char EMPTY_DOCUMENT[] = {5, 0, 0, 0, 0};
constexpr std::size_t MAX_DEPTH = 100;  ///< the library checks and prints recursively

int keyLength(std::string_view name) { return static_cast<int>(name.size()); }

/// The library's view of an object, which keeps the bytes. Never moved: the library's struct points into itself.
struct CView {
  explicit CView(const BSONObj& object) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(object.objdata());
    [[maybe_unused]] const bool ok = bson_init_static(&document, bytes, static_cast<std::size_t>(object.objsize()));
    assert(ok);
  }
  CView(const CView&) = delete;
  CView& operator=(const CView&) = delete;

  bson_t document;
};

/// As an element type by itself the library's struct would lose its alignment.
struct CCursor {
  bson_iter_t field;
};

/// Begins to walk the document inside the field; false when it holds none.
bool enter(const bson_iter_t& field, bson_iter_t& inside) {
  if (BSON_ITER_HOLDS_DOCUMENT(&field) || BSON_ITER_HOLDS_ARRAY(&field)) return bson_iter_recurse(&field, &inside);
  if (!BSON_ITER_HOLDS_CODEWSCOPE(&field)) return false;
  std::uint32_t codeLength = 0;
  std::uint32_t scopeLength = 0;
  const std::uint8_t* scope = nullptr;
  bson_iter_codewscope(&field, &codeLength, &scopeLength, &scope);
  return bson_iter_init_from_data(&inside, scope, scopeLength);
}

/// Whether documents inside `document` go no deeper than the limit. Damaged parts are left to the library's check.
bool isFlatEnough(const bson_t& document) {
  std::vector<CCursor> path(1);
  if (!bson_iter_init(&path.back().field, &document)) return false;
  while (!path.empty()) {
    CCursor inside;
    if (!bson_iter_next(&path.back().field)) {
      path.pop_back();
    } else if (enter(path.back().field, inside.field)) {
      if (path.size() == MAX_DEPTH) return false;
      path.push_back(inside);
    }
  }
  return true;
}

template <class T>
T saturated(double value) {
  if (!(value == value)) return 0;
  // The upper limit itself may not be a double: its neighbour above, a power of two, is.
  if (value >= static_cast<double>(std::numeric_limits<T>::max())) return std::numeric_limits<T>::max();
  if (value <= static_cast<double>(std::numeric_limits<T>::min())) return std::numeric_limits<T>::min();
  return static_cast<T>(value);
}

/// Calls `read` with an iterator on the field; `fallback` when it is absent.
template <class T, class F>
T readField(const BSONObj& object, std::string_view name, T fallback, F read) {
  const CView view(object);
  bson_iter_t field;
  return bson_iter_init_find_w_len(&field, &view.document, name.data(), keyLength(name)) ? read(field) : fallback;
}

}  // namespace

BSONObj::BSONObj() = default;
BSONObj::~BSONObj() = default;
BSONObj::BSONObj(const BSONObj&) = default;
BSONObj& BSONObj::operator=(const BSONObj&) = default;

BSONObj BSONObj::fromBytes(const void* bytes, std::size_t size, bool* ok) {
  BSONObj result;
  bson_t document;
  const auto flags = static_cast<bson_validate_flags_t>(BSON_VALIDATE_UTF8 | BSON_VALIDATE_UTF8_ALLOW_NULL);
  const bool isValid = bytes != nullptr && bson_init_static(&document, static_cast<const std::uint8_t*>(bytes), size) &&
                       isFlatEnough(document) && bson_validate(&document, flags, nullptr);
  if (isValid) {
    const auto* begin = static_cast<const unsigned char*>(bytes);
    result.m_bytes = std::make_shared<const std::vector<unsigned char>>(begin, begin + size);
  }
  if (ok != nullptr) *ok = isValid;
  return result;
}

int BSONObj::objsize() const { return static_cast<int>(m_bytes ? m_bytes->size() : sizeof EMPTY_DOCUMENT); }
bool BSONObj::isEmpty() const { return objsize() == sizeof EMPTY_DOCUMENT; }
const char* BSONObj::objdata() const {
  return reinterpret_cast<const char*>(m_bytes ? m_bytes->data() : EMPTY_DOCUMENT);
}

bool BSONObj::hasField(std::string_view name) const {
  return readField(*this, name, false, [](const bson_iter_t&) { return true; });
}

std::int64_t BSONObj::getLong(std::string_view name) const {
  return readField(*this, name, std::int64_t{0}, [](const bson_iter_t& field) -> std::int64_t {
    if (BSON_ITER_HOLDS_DOUBLE(&field)) return saturated<std::int64_t>(bson_iter_double(&field));
    return BSON_ITER_HOLDS_INT(&field) ? bson_iter_as_int64(&field) : 0;
  });
}

int BSONObj::getIntField(std::string_view name) const {
  const std::int64_t value = getLong(name);
  if (value > std::numeric_limits<int>::max()) return std::numeric_limits<int>::max();
  if (value < std::numeric_limits<int>::min()) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

double BSONObj::getDouble(std::string_view name) const {
  return readField(*this, name, 0.0, [](const bson_iter_t& field) {
    if (BSON_ITER_HOLDS_DOUBLE(&field)) return bson_iter_double(&field);
    return BSON_ITER_HOLDS_INT(&field) ? static_cast<double>(bson_iter_as_int64(&field)) : 0.0;
  });
}

bool BSONObj::getBoolField(std::string_view name) const {
  return readField(*this, name, false,
                   [](const bson_iter_t& field) { return BSON_ITER_HOLDS_BOOL(&field) && bson_iter_bool(&field); });
}

std::string BSONObj::getStringField(std::string_view name) const {
  return readField(*this, name, std::string(), [](const bson_iter_t& field) {
    std::uint32_t length = 0;
    const char* text = BSON_ITER_HOLDS_UTF8(&field) ? bson_iter_utf8(&field, &length) : nullptr;
    return text != nullptr ? std::string(text, length) : std::string();
  });
}

std::string BSONObj::toString() const {
  const CView view(*this);
  std::size_t length = 0;
  char* json = bson_as_relaxed_extended_json(&view.document, &length);
  const std::unique_ptr<char, decltype(&bson_free)> text(json, &bson_free);
  return text ? std::string(text.get(), length) : std::string("{ }");
}

struct BSONObjBuilder::Private {
  Private() { bson_init(&document); }
  ~Private() { bson_destroy(&document); }
  Private(const Private&) = delete;
  Private& operator=(const Private&) = delete;

  bson_t document;
};

BSONObjBuilder::BSONObjBuilder() : m_d(std::make_unique<Private>()) {}
BSONObjBuilder::~BSONObjBuilder() = default;

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, int value) {
  bson_append_int32(&m_d->document, name.data(), keyLength(name), value);
  return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, std::int64_t value) {
  bson_append_int64(&m_d->document, name.data(), keyLength(name), value);
  return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, double value) {
  bson_append_double(&m_d->document, name.data(), keyLength(name), value);
  return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, bool value) {
  bson_append_bool(&m_d->document, name.data(), keyLength(name), value);
  return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, const char* value) {
  return append(name, std::string(value != nullptr ? value : ""));
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, const std::string& value) {
  // A text that is not UTF-8 would make the whole document unreadable: its bad bytes become U+FFFD.
  const bool isValid = bson_utf8_validate(value.data(), value.size(), true);
  const std::string text = isValid ? value : QString::fromStdString(value).toStdString();
  bson_append_utf8(&m_d->document, name.data(), keyLength(name), text.data(), static_cast<int>(text.size()));
  return *this;
}

BSONObjBuilder& BSONObjBuilder::append(std::string_view name, const BSONObj& value) {
  const CView view(value);
  bson_append_document(&m_d->document, name.data(), keyLength(name), &view.document);
  return *this;
}

BSONObj BSONObjBuilder::obj() const {
  BSONObj result;
  const auto* begin = bson_get_data(&m_d->document);
  result.m_bytes = std::make_shared<const std::vector<unsigned char>>(begin, begin + m_d->document.len);
  return result;
}

}  // namespace bson
