#pragma once

namespace Common {

// A buffer that can be made contiguous.
class DataBuffer {
  public:
    virtual ~DataBuffer() = default;
    virtual void Collect() {}
};

}  // namespace Common
