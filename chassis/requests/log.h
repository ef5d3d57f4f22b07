// The chassis' log: one line an event, to standard error or to a file.
#ifndef TARN_CHASSIS_REQUESTS_LOG_H
#define TARN_CHASSIS_REQUESTS_LOG_H

#include <ostream>
#include <string_view>

namespace tarn::chassis {

class Log {
  public:
    explicit Log(std::ostream &out) : out_(out) {}
    // Writes the line with the time of day in front. Control characters of the text are written as '?'.
    void line(std::string_view text);

  private:
    std::ostream &out_;
};

}  // namespace tarn::chassis

#endif
