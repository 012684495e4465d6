// Chooses, saves and opens presets.
#pragma once

#include <functional>
#include <string>

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include "hosts/gimp/session.h"

namespace radiashafts::gimp {

class PresetRow {
 public:
  // When the user chooses a preset, the session has its values and chosen is called.
  PresetRow(const Session& session, std::function<void()> chosen);
  PresetRow(const PresetRow&) = delete;
  PresetRow& operator=(const PresetRow&) = delete;

  GtkWidget* widget() const { return widget_; }

  // No preset is shown as chosen: the values are others.
  void forget();

 private:
  bool fill();
  bool addPresetsOf(const char* file);
  void choose();
  void open();
  bool hasOwn(const char* name) const;
  bool mayReplace(const char* name) const;
  void save(const char* name);
  void askForName();
  void tell(const std::string& failure) const;

  const Session& session_;
  std::function<void()> chosen_;
  std::string ownFile_;  // where the user's presets are
  GtkWidget* widget_;
  GtkListStore* presets_;
  GtkWidget* list_;
};

}  // namespace radiashafts::gimp
