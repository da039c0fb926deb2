#pragma once

#include <QMetaMethod>
#include <QMetaObject>
#include <string>
#include <vector>

namespace test_support {

/// The signatures of the signals and slots that a class adds to those of its base, in order of their index.
inline std::vector<std::string> own_methods_of(const QMetaObject& meta) {
  std::vector<std::string> signatures;
  for (int index = meta.methodOffset(); index < meta.methodCount(); ++index) {
    signatures.push_back(meta.method(index).methodSignature().toStdString());
  }
  return signatures;
}

}  // namespace test_support
