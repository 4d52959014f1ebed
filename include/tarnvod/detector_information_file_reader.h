// SPDX-FileCopyrightText: 2026 The tarnvod authors
// SPDX-License-Identifier: MIT

#ifndef TARNVOD_DETECTOR_INFORMATION_FILE_READER_H
#define TARNVOD_DETECTOR_INFORMATION_FILE_READER_H

#include <tarnvod/detector_information.h>
#include <tarnvod/export.h>

#include <fstream>
#include <string>

namespace tarn::VOD {

/**
 * Reads detector information from a file that holds the raw bytes of one serialized `VOD.DetectorInformation`.
 *
 * Failures are thrown as `const char*`, not as exception objects:
 *
 * @code
 * try {
 *   auto information = tarn::VOD::DetectorInformationFileReader{path}.parseDetectorInformation();
 * } catch (const char* problem) {
 *   std::cerr << path << ": " << problem << '\n';
 * }
 * @endcode
 *
 * A reader must not be used from two threads at once. Its functions may be called from a callback; they do not block on
 * the service.
 */
class TARNVOD_EXPORT DetectorInformationFileReader {
 public:
  /**
   * Opens the file and keeps it open for the reader's life.
   *
   * @param path  the file's path
   * @throw const char*  "Unable to open detector information file"
   */
  explicit DetectorInformationFileReader(const std::string& path);

  /**
   * Reads from where the file stands to its end, and converts what was read. Bytes that are not a valid message are no
   * error: the result holds what could be read of them.
   *
   * @return the detector information
   * @throw const char*  "Unable to parse detector information from file" when nothing is left to read (an empty file, a
   *                     second call) or the file can be opened but not read (a folder)
   */
  DetectorInformation parseDetectorInformation();

 private:
  std::ifstream file_;
};

}  // namespace tarn::VOD

#endif
