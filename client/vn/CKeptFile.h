#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace VN {

/// A file in which the client keeps something of the user's over its runs. GUI thread.
///
/// It is replaced as a whole or not at all. One that cannot be understood is renamed, and one that can neither be read
/// nor renamed is not written to.
class CKeptFile {
 public:
  /// `what` names the contents to users. An empty `path`: nothing is read or written.
  CKeptFile(const QString& path, const QString& what) : m_path(path), m_what(what) {}

  /// False when there is nothing to read.
  bool read(QByteArray& text);
  /// The text that was read cannot be understood: keeps the file under another name.
  void keepAside(const QString& why);
  /// Returns why the file could not be written, for users, also logged as an error.
  QString write(const QByteArray& text);

  /// What users must know about the file as it was found.
  const QStringList& messages() const { return m_messages; }

 private:
  void report(const QString& message);

  const QString m_path;
  const QString m_what;
  bool m_mayWrite = true;
  QStringList m_messages;
};

}  // namespace VN
