#pragma once

namespace Varnok {

/// A text reading of an engine. The hardware interface only hands references of it on.
class EngineReadingString_i;

/// A whole-number reading of an engine. The hardware interface only hands pointers to it on.
class EngineReadingValueLong_i;

}  // namespace Varnok
