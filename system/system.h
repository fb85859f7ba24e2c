// Everything of the system that the program reaches, in one bundle that is passed by reference.
#pragma once

#include "system/filestore.h"
#include "system/filesystemprobe.h"
#include "system/interprocess.h"
#include "system/machine.h"
#include "system/rawregistry.h"
#include "system/registrystore.h"
#include "system/shell.h"
#include "system/systemclock.h"
#include "system/systemlocale.h"

struct TSystem {
  TRegistryFactory& Registry;
  RawRegistry& Raw;
  FileSystemProbe& Probe;
  FileStore& Files;
  TMachine& Machine;
  TLocale& Locale;
  TClock& Clock;
  Shell& TheShell;
  TInterprocess& Interprocess;
};
