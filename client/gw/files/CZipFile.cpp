#include "gw/files/CZipFile.h"

#include "gw/files/table_limits.h"

#include <QIODevice>

#include <unzip.h>

#include <algorithm>

namespace GW {

namespace {

constexpr ZPOS64_T MAX_ENTRIES = 10'000;
constexpr int IGNORE_CASE = 2;
constexpr int ENCRYPTED = 1;  ///< bit of an entry's flags

// minizip's way to a file: the stream is our device.

void* ZCALLBACK openDevice(void* opaque, const void*, int) { return opaque; }

uLong ZCALLBACK readDevice(void*, void* stream, void* buffer, uLong size) {
  const qint64 got = static_cast<QIODevice*>(stream)->read(static_cast<char*>(buffer), static_cast<qint64>(size));
  return static_cast<uLong>(std::max<qint64>(got, 0));
}

uLong ZCALLBACK writeDevice(void*, void*, const void*, uLong) { return 0; }

ZPOS64_T ZCALLBACK tellDevice(void*, void* stream) {
  return static_cast<ZPOS64_T>(static_cast<QIODevice*>(stream)->pos());
}

long ZCALLBACK seekDevice(void*, void* stream, ZPOS64_T offset, int origin) {
  auto* const device = static_cast<QIODevice*>(stream);
  if (offset > static_cast<ZPOS64_T>(device->size())) return -1;
  qint64 at = static_cast<qint64>(offset);
  if (origin == ZLIB_FILEFUNC_SEEK_CUR) at += device->pos();
  if (origin == ZLIB_FILEFUNC_SEEK_END) at += device->size();
  return at <= device->size() && device->seek(at) ? 0 : -1;
}

int ZCALLBACK closeDevice(void*, void*) { return 0; }
int ZCALLBACK deviceError(void*, void*) { return 0; }

}  // namespace

struct CZipFile::Private {
  unzFile zip = nullptr;
  qint64 unpacked = 0;  ///< bytes of all parts so far
};

CZipFile::CZipFile(QIODevice& device) : m_d(new Private) {
  zlib_filefunc64_def functions{openDevice, readDevice,  writeDevice, tellDevice,
                                seekDevice, closeDevice, deviceError, &device};
  m_d->zip = unzOpen2_64("", &functions);
  unz_global_info64 info{};
  if (m_d->zip != nullptr && (unzGetGlobalInfo64(m_d->zip, &info) != UNZ_OK || info.number_entry > MAX_ENTRIES)) {
    unzClose(m_d->zip);
    m_d->zip = nullptr;
  }
}

CZipFile::~CZipFile() {
  if (m_d->zip != nullptr) unzClose(m_d->zip);
}

bool CZipFile::isOpen() const { return m_d->zip != nullptr; }

CZipPart::CZipPart(CZipFile& file, const QString& name) : m_file(file) {
  const unzFile zip = m_file.m_d->zip;
  unz_file_info64 info{};
  if (zip == nullptr || name.isEmpty() || unzLocateFile(zip, name.toUtf8().constData(), IGNORE_CASE) != UNZ_OK ||
      unzGetCurrentFileInfo64(zip, &info, nullptr, 0, nullptr, 0, nullptr, 0) != UNZ_OK || (info.flag & ENCRYPTED) != 0)
    return;
  if (info.uncompressed_size > static_cast<ZPOS64_T>(MAX_PART_BYTES)) {
    m_state = EState::TooLarge;
    return;
  }
  m_isPartOpen = unzOpenCurrentFile(zip) == UNZ_OK;
  m_left = static_cast<qint64>(info.uncompressed_size);
  if (m_isPartOpen) m_state = EState::Fine;
}

CZipPart::~CZipPart() { closePart(); }

void CZipPart::closePart() {
  if (!m_isPartOpen) return;
  m_isPartOpen = false;
  const bool isWrong = unzCloseCurrentFile(m_file.m_d->zip) == UNZ_CRCERROR;
#ifndef FUZZING_BUILD_MODE_UNSAFE_FOR_PRODUCTION  // mutated input would never come past it
  if (isWrong && m_state == EState::Fine) m_state = EState::Damaged;
#else
  Q_UNUSED(isWrong);
#endif
}

int CZipPart::fail(EState state) {
  m_state = state;
  return 0;
}

int CZipPart::read(char* data, int size) {
  if (m_state != EState::Fine || !m_isPartOpen) return 0;
  const int got = unzReadCurrentFile(m_file.m_d->zip, data, static_cast<unsigned>(size));
  if (got < 0 || (got == 0 && m_left != 0)) return fail(EState::Damaged);
  if (got == 0) closePart();
  m_left -= got;
  m_file.m_d->unpacked += got;
  if (m_file.m_d->unpacked > MAX_ALL_BYTES) return fail(EState::TooLarge);
  return got;
}

}  // namespace GW
