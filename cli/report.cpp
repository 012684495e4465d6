#include "cli/report.h"

#include <iomanip>
#include <iostream>
#include <sstream>

#include <nlohmann/json.hpp>

#include "cli/printable.h"

namespace radiashafts::cli {
namespace {

using Json = nlohmann::ordered_json;

Json jsonOf(const Job& job) {
  Json json{{"input", utf8(job.input)}, {"output", utf8(job.output)}};
  if (job.frame) json["frame"] = *job.frame;
  return json;
}

// Bytes that are no UTF-8 are replaced.
std::string lineOf(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace

// Not among the bytes of a picture.
void Report::print(const std::string& line) const {
  const std::vector<Job>& jobs = commandLine_.jobs;
  const bool takesPicture = !jobs.empty() && jobs[0].output == standardStream;
  progress_.clear();
  (takesPicture ? std::cerr : std::cout) << line << std::flush;
}

void Report::printText(const std::string& text) const {
  progress_.clear();
  printMessage(text);
}

void Report::skipped(const Job& job) const {
  if (commandLine_.json) {
    Json json = jsonOf(job);
    json["skipped"] = true;
    print(lineOf(json));
  } else if (!commandLine_.quiet) {
    printText("note: " + job.output.string() + " exists, and is skipped");
  }
}

void Report::made(const Job& job, const PictureReport& picture) const {
  if (commandLine_.json) {
    Json json = jsonOf(job);
    json.update({{"width", picture.width},
                 {"height", picture.height},
                 {"depth", picture.depth},
                 {"seconds", picture.seconds},
                 {"notes", picture.notes}});
    print(lineOf(json));
  } else if (!commandLine_.quiet) {
    for (const std::string& note : picture.notes) printText("note: " + note);
    std::ostringstream line;
    line << printable(job.output.string()) << ": " << picture.width << " x " << picture.height
         << " pixels, " << picture.depth << " bits a channel, rays in " << std::fixed
         << std::setprecision(2) << picture.seconds << " s\n";
    print(line.str());
  }
}

void Report::failed(const Job& job, const Failure& failure) const {
  failedAtLast(job, failure);
  printText("radiashafts: " + failure.text);
}

void Report::failedAtLast(const Job& job, const Failure& failure) const {
  if (!commandLine_.json) return;
  Json json = jsonOf(job);
  json["error"] = failure.text;
  json["exitCode"] = failure.exitCode;
  print(lineOf(json));
}

}  // namespace radiashafts::cli
