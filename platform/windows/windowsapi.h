// The one way to <windows.h>: the system's routines under their wide names, texts as the system takes them,
// and owners for its handles.
#pragma once

#ifndef NOMINMAX
#define NOMINMAX
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif

#include <windows.h>
#include <cstddef>

// The macros that would rename our own routines.
#undef CreateWindow
#undef DeleteFile
#undef DrawText
#undef FindText
#undef FindWindow
#undef FormatMessage
#undef GetDriveType
#undef GetEnvironmentVariable
#undef GetLogicalDriveStrings
#undef GetLongPathName
#undef GetMessage
#undef GetObject
#undef GetSystemDirectory
#undef GetTempFileName
#undef LoadImage
#undef LoadString
#undef MoveFile
#undef PostMessage
#undef ReplaceFile
#undef ReplaceText
#undef SendMessage
#undef SetEnvironmentVariable
#undef ShellExecute

#include <cstdint>
#include <type_traits>
#include <utility>

#include "base/keypaths.h"
#include "base/text.h"
#include "system/systemerror.h"

namespace corvalt {

// A unit of ours and a unit of the system's are the same 16 bits.
static_assert(sizeof(wchar_t) == sizeof(char16_t));

inline const wchar_t* Wide(const Text& text) {
  return reinterpret_cast<const wchar_t*>(text.c_str());
}
inline const wchar_t* WideUnits(TextView text) {
  return reinterpret_cast<const wchar_t*>(text.data());
}
inline wchar_t* WideBuffer(Text& buffer) {
  return reinterpret_cast<wchar_t*>(buffer.data());
}
inline TextView FromWide(const wchar_t* text, std::size_t length) {
  return {reinterpret_cast<const char16_t*>(text), length};
}
inline TextView FromWide(const wchar_t* text) {
  return TextView(reinterpret_cast<const char16_t*>(text));
}

// The predefined handle of a root key: its 32 bits, sign-extended as winreg.h does it.
inline HKEY RootHandle(TRootKey rootKey) {
  return reinterpret_cast<HKEY>(static_cast<LONG_PTR>(static_cast<LONG>(rootKey)));
}

inline TSystemError LastError() {
  return TSystemError{GetLastError()};
}

// A routine that not every Windows has; null where it is missing. TRoutine is its pointer type.
template <typename TRoutine>
TRoutine FindRoutine(HMODULE module, const char* name) {
  static_assert(std::is_pointer_v<TRoutine>);
  const FARPROC found = module == nullptr ? nullptr : GetProcAddress(module, name);
  return reinterpret_cast<TRoutine>(reinterpret_cast<void*>(found));
}

// Owns one handle of the system; TTraits gives its type, the value that means none, and the routine that
// closes it.
template <typename TTraits>
class TOwned {
 public:
  using THandle = typename TTraits::THandle;

  TOwned() = default;
  explicit TOwned(THandle handle) : m_handle(handle) {
  }
  TOwned(TOwned&& other) noexcept : m_handle(std::exchange(other.m_handle, TTraits::None())) {
  }
  TOwned& operator=(TOwned&& other) noexcept {
    if (this != &other) {
      Close();
      m_handle = std::exchange(other.m_handle, TTraits::None());
    }
    return *this;
  }
  ~TOwned() {
    Close();
  }

  explicit operator bool() const {
    return m_handle != TTraits::None();
  }
  THandle Get() const {
    return m_handle;
  }
  // Lets go of the handle, which has another owner now.
  void Release() {
    m_handle = TTraits::None();
  }
  void Close() {
    if (m_handle != TTraits::None())
      TTraits::Close(std::exchange(m_handle, TTraits::None()));
  }

 private:
  THandle m_handle = TTraits::None();
};

struct TFileTraits {
  using THandle = HANDLE;
  static HANDLE None() {
    return INVALID_HANDLE_VALUE;
  }
  static void Close(HANDLE handle) {
    CloseHandle(handle);
  }
};

struct TFindTraits {
  using THandle = HANDLE;
  static HANDLE None() {
    return INVALID_HANDLE_VALUE;
  }
  static void Close(HANDLE handle) {
    FindClose(handle);
  }
};

// Mutexes and processes.
struct TObjectTraits {
  using THandle = HANDLE;
  static HANDLE None() {
    return nullptr;
  }
  static void Close(HANDLE handle) {
    CloseHandle(handle);
  }
};

struct TModuleTraits {
  using THandle = HMODULE;
  static HMODULE None() {
    return nullptr;
  }
  static void Close(HMODULE module) {
    FreeLibrary(module);
  }
};

struct TLocalMemoryTraits {
  using THandle = HLOCAL;
  static HLOCAL None() {
    return nullptr;
  }
  static void Close(HLOCAL memory) {
    LocalFree(memory);
  }
};

using TOwnedFile = TOwned<TFileTraits>;
using TOwnedFind = TOwned<TFindTraits>;
using TOwnedObject = TOwned<TObjectTraits>;
using TOwnedModule = TOwned<TModuleTraits>;
using TOwnedLocalMemory = TOwned<TLocalMemoryTraits>;

}  // namespace corvalt
