// Sections and texts by their names, where the program itself counts them.
#pragma once

#include <cstdint>
#include <string>

#include "base/text.h"
#include "core/languageids.h"

namespace corvalt {

// The codes of the sections, as the catalogue has them; a test compares the two.
namespace Section {

inline constexpr std::int32_t RegistryIntegrity = 1;
inline constexpr std::int32_t ObsoleteSoftware = 3;
inline constexpr std::int32_t CustomControls = 4;
inline constexpr std::int32_t FileExtensions = 5;
inline constexpr std::int32_t FileAssociations = 6;
inline constexpr std::int32_t StartMenu = 7;
inline constexpr std::int32_t StartupPrograms = 8;
inline constexpr std::int32_t SharedPrograms = 9;
inline constexpr std::int32_t SoftwareLocations = 10;
inline constexpr std::int32_t AddRemovePrograms = 11;
inline constexpr std::int32_t WindowsFonts = 12;
inline constexpr std::int32_t HelpAndResources = 13;
inline constexpr std::int32_t SoundsAndAppevents = 14;
inline constexpr std::int32_t MruLists = 15;
inline constexpr std::int32_t DeviceDrivers = 16;
inline constexpr std::int32_t WindowsServices = 17;
inline constexpr std::int32_t VirtualDevices = 18;
inline constexpr std::int32_t ArpCache = 19;
inline constexpr std::int32_t FilesOfLocalMachine = 21;
inline constexpr std::int32_t FilesOfCurrentUser = 22;
inline constexpr std::int32_t FilesOfUsers = 23;
inline constexpr std::int32_t AdwareAndSpyware = 100;

}  // namespace Section

// What a text with its arguments is in the language of NumberedTexts(), written without the product's
// routine. Expects as many arguments as the text takes.
Text Says(TextId id);
Text Says(TextId id, TextView argument);
Text Says(TextId id, TextView first, TextView second);

// The same in UTF-8.
template <typename... TArguments>
std::string Said(TextId id, const TArguments&... arguments) {
  return EncodeUtf8(Says(id, arguments...));
}

// A message box with this text and the title of its kind, as the double of the message boxes writes it.
std::string InformationBox(TextView text);
std::string FailureBox(TextView text);
std::string QuestionBox(TextView text);

}  // namespace corvalt
