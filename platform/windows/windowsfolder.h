// A folder of the real system that is held open, and files in it, which are reached by their names in the
// folder.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "base/text.h"
#include "platform/windows/windowsapi.h"
#include "system/filestore.h"
#include "system/systemerror.h"

namespace corvalt {

class TWindowsFolder : public TOpenFolder {
 public:
  // As TFileStore::OpenFolder.
  static TSystemError Open(TextView path, std::unique_ptr<TOpenFolder>& folder);

  TWindowsFolder(TOwnedFile folder, Text path) : m_folder(std::move(folder)), m_path(std::move(path)) {
  }

  TFileInfo Info(TextView name) override;
  TSystemError ReadFile(TextView name, std::vector<std::uint8_t>& bytes) override;
  TSystemError ReplaceFile(TextView name, std::span<const std::uint8_t> bytes) override;
  TSystemError DeleteFile(TextView name) override;
  TSystemError GrowFile(TextView name, std::unique_ptr<TGrowingFile>& file) override;
  TSystemError HoldFile(TextView name, std::unique_ptr<THeldFile>& file) override;
  std::optional<TFolderIdentity> Identity() override;

 private:
  TSystemError CheckName(TextView name) const;
  TSystemError CreateTemporary(TextView name, TOwnedFile& file) const;
  TSystemError OpenContent(TextView name, TOwnedFile& file) const;

  TOwnedFile m_folder;
  Text m_path;  // with a "\" at its end
};

}  // namespace corvalt
