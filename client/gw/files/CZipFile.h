#pragma once

#include <QString>

#include <memory>

class QIODevice;

namespace GW {

/// A zip file on a device; its parts are read one at a time. One thread.
class CZipFile {
 public:
  /// `device` is seekable, open for reading, and outlives the zip file.
  explicit CZipFile(QIODevice& device);
  ~CZipFile();

  /// False when the device holds no zip file, or one with more parts than a spreadsheet has.
  bool isOpen() const;

 private:
  friend class CZipPart;
  struct Private;
  std::unique_ptr<Private> m_d;
};

/// One part of a zip file, unpacked while it is read. Only one may be open at a time.
class CZipPart {
 public:
  enum class EState : unsigned char { Fine, Damaged, TooLarge };

  /// Opens the part of that name, without regard to case. The zip file outlives the part.
  CZipPart(CZipFile& file, const QString& name);
  ~CZipPart();
  CZipPart(const CZipPart&) = delete;
  CZipPart& operator=(const CZipPart&) = delete;

  /// Damaged also for a part that is not there or encrypted, and after its end when its length or checksum is wrong.
  EState state() const { return m_state; }

  /// Unpacks up to `size` bytes; 0 at the end and after an error.
  int read(char* data, int size);

 private:
  int fail(EState state);
  void closePart();

  CZipFile& m_file;
  EState m_state = EState::Damaged;
  bool m_isPartOpen = false;
  qint64 m_left = 0;  ///< bytes that the directory promises beyond those read
};

}  // namespace GW
