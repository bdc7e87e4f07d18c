#pragma once

namespace Varnok {

/// A text reading of an engine. The hardware interface only passes references to it.
class EngineReadingString_i;

/// A whole-number reading of an engine. The hardware interface only passes pointers to it.
class EngineReadingValueLong_i;

}  // namespace Varnok
