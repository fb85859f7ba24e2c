// What the dialogs of the window show and do, as the repair's own pieces say it: the windows see them through
// here.
#pragma once

#include "repair/backupview.h"
#include "repair/ignorereg.h"
#include "repair/restoredeleted.h"
