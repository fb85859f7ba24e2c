// Everything of the system that the program reaches, in one bundle that is passed by reference.
#pragma once

#include "core/filestore.h"
#include "core/filesystemprobe.h"
#include "core/interprocess.h"
#include "core/machine.h"
#include "core/rawregistry.h"
#include "core/registrystore.h"
#include "core/shell.h"
#include "core/systemclock.h"
#include "core/systemlocale.h"

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
