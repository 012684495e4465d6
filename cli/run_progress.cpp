#include "cli/run_progress.h"

#include <cmath>
#include <iomanip>
#include <sstream>

namespace radiashafts::cli {
namespace {

constexpr long secondsOfMinute = 60;
constexpr long secondsOfHour = 60 * secondsOfMinute;

// With one digit behind the point below 10.
std::string roundedText(double number) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(number < 9.95 ? 1 : 0) << number;
  return text.str();
}

// "38 s", "7 min 38 s", "2 h 5 min".
std::string timeText(double time) {
  const long seconds = std::lround(std::ceil(time));
  const long minutes = seconds / secondsOfMinute;
  if (seconds < secondsOfMinute) return std::to_string(seconds) + " s";
  if (seconds < secondsOfHour) {
    return std::to_string(minutes) + " min " + std::to_string(seconds % secondsOfMinute) + " s";
  }
  return std::to_string(seconds / secondsOfHour) + " h " +
         std::to_string(minutes % secondsOfMinute) + " min";
}

std::string rateText(double secondsOfOne) {
  if (secondsOfOne <= 1.0) return roundedText(1.0 / secondsOfOne) + " a second";
  const bool isLong = secondsOfOne >= static_cast<double>(secondsOfMinute);
  return (isLong ? timeText(secondsOfOne) : roundedText(secondsOfOne) + " s") + " each";
}

}  // namespace

std::string progressBar(const std::string& label, int percent) {
  constexpr int cells = 40;
  std::string bar(static_cast<std::size_t>(percent * cells / 100), '#');
  bar.resize(cells, '.');
  return label + " [" + bar + "] " + std::to_string(percent) + "%";
}

void RunProgress::finishOne() {
  ++done_;
  seconds_ = std::chrono::duration<double>(Clock::now() - begin_).count();
}

std::string RunProgress::text(int percentOfThisOne) const {
  std::string text = noun_ + ' ' + std::to_string(done_ + 1) + " of " + std::to_string(count_);
  const double secondsOfOne = done_ == 0 ? 0.0 : seconds_ / static_cast<double>(done_);
  const bool isSlow = done_ == 0 || secondsOfOne > 1.0;
  if (isSlow) text += ", " + std::to_string(percentOfThisOne) + " % of it";
  if (secondsOfOne <= 0.0) return text;
  const double left = secondsOfOne * static_cast<double>(count_ - done_);
  return text + ", " + rateText(secondsOfOne) + ", " + timeText(left) + " left";
}

}  // namespace radiashafts::cli
