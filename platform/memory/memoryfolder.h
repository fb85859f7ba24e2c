// A folder of the disk in memory that is held open: it stays the one that was opened, whatever its path leads
// to meanwhile.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "base/text.h"
#include "platform/memory/memoryfile.h"
#include "platform/memory/memoryfiles.h"
#include "system/filestore.h"
#include "system/systemerror.h"

namespace corvalt {

class TMemoryGrowingFile : public TGrowingFile {
 public:
  TMemoryGrowingFile(TMemoryDisk& disk, std::shared_ptr<TMemoryFile> file, Text path)
      : m_disk(disk), m_file(std::move(file)), m_path(std::move(path)) {
  }
  TSystemError Append(std::span<const std::uint8_t> bytes) override;
  TSystemError Flush() override;

 private:
  TMemoryDisk& m_disk;
  std::shared_ptr<TMemoryFile> m_file;
  Text m_path;
};

class TMemoryHeldFile : public THeldFile {
 public:
  TMemoryHeldFile(TMemoryDisk& disk, std::shared_ptr<TMemoryFile> file);
  ~TMemoryHeldFile() override;

 private:
  TMemoryDisk& m_disk;
  std::shared_ptr<TMemoryFile> m_file;
};

class TMemoryFolder : public TOpenFolder {
 public:
  // path ends with "\".
  TMemoryFolder(TMemoryDisk& disk, std::shared_ptr<TMemoryFile> folder, Text path);
  ~TMemoryFolder() override;

  TFileInfo Info(TextView name) override;
  TSystemError ReadFile(TextView name, std::vector<std::uint8_t>& bytes) override;
  TSystemError ReplaceFile(TextView name, std::span<const std::uint8_t> bytes) override;
  TSystemError DeleteFile(TextView name) override;
  TSystemError GrowFile(TextView name, std::unique_ptr<TGrowingFile>& file) override;
  TSystemError HoldFile(TextView name, std::unique_ptr<THeldFile>& file) override;
  std::optional<TFolderIdentity> Identity() override;

 private:
  TMemoryDisk& m_disk;
  std::shared_ptr<TMemoryFile> m_folder;
  Text m_path;
};

}  // namespace corvalt
