#include "cli/encoding_options.h"

#include <CLI/CLI.hpp>

#include "cli/help_text.h"
#include "cli/job_list.h"

namespace radiashafts::cli {

void addEncodingOptions(CLI::App& app, standin::ReadingOptions& reading,
                        standin::EncodingOptions& encoding) {
  const auto add = [&app](const char* name, auto& value, const char* description,
                          const char* type) {
    return app.add_option(name, value, description)->type_name(type)->group(encodingGroup);
  };
  add("--format", encoding.format,
      "Write this format, by its extension, whatever outputs are called; {ext} and names from "
      "inputs take the extension",
      "EXTENSION");
  add("--quality", encoding.quality, "Of JPEG, WebP, HEIC, AVIF; 1 to 100 (default: the input's)",
      "NUMBER")
      ->check(CLI::Range(1, 100).description(""));
  add("--compression", encoding.compression,
      "Of TIFF (none, lzw, zip, packbits, jpeg), OpenEXR (none, rle, zips, zip, piz, pxr24, b44, "
      "b44a, dwaa, dwab), WebP (lossless, lossy)",
      "NAME");
  add("--depth", encoding.depth, "Bits of a channel: 8, 10, 12, 16 or 32", "BITS")
      ->check(CLI::IsMember({8, 10, 12, 16, 32}).description(""));
  app.add_option_function<std::string>(
         "--profile", [&reading](const std::string& file) { reading.profile = pathOf(file); },
         "Convert colors to the RGB of this ICC profile; CMYK becomes sRGB without it")
      ->type_name("FILE")
      ->group(encodingGroup);
  app.add_option_function<std::string>(
         "--page",
         [&reading](const std::string& page) {
           constexpr int mostPages = 1 << 20;
           reading.allPages = page == "all";
           if (!reading.allPages && (!CLI::detail::lexical_cast(page, reading.page) ||
                                     reading.page < 1 || reading.page > mostPages)) {
             throw CLI::ValidationError("--page", "'" + page + "' is neither a number nor all");
           }
         },
         "Which page of a TIFF, GIF or HEIC file to render, from 1 on; all of them into a TIFF "
         "file")
      ->type_name("NUMBER|all")
      ->group(encodingGroup);
}

}  // namespace radiashafts::cli
