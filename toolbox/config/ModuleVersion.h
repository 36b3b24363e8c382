#pragma once

/// The module's one version, also read by the resource compiler.
#define MODULE_VERSION_MAJOR 6
#define MODULE_VERSION_MINOR 8
#define MODULE_VERSION_BUILD 282
