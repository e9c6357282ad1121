// Numbers of the resources; read by the resource compiler as well.
#pragma once

#define KVN_PROGRAM_ICON 101
