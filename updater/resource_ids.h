// Numbers of the resources. The resource compiler reads this file too.
#pragma once

#define KVN_PROGRAM_ICON 101
