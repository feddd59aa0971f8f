#pragma once

#include <ctime>

#include "common/convertible.h"
#include "common/string.h"

namespace Common {

class time : public Convertible {
  public:
    time();  // now
    explicit time(time_t seconds) : m_time(seconds) {}
    time(time const&) = default;
    time& operator=(time const&) = default;
    virtual ~time() = default;

    time_t seconds() const { return m_time; }

    // Local time as "YYYY:MM:DD:hh:mm:ss".
    string toString() const override;

  private:
    time_t m_time;
};

}  // namespace Common
