// The settings in the dialog: a control for each parameter, in the table's groups.
#pragma once

#include <functional>
#include <list>
#include <string>

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include "hosts/gimp/session.h"

namespace radiashafts::gimp {

class Controls {
 public:
  // Values go into the session as the user changes them; then changed is called.
  Controls(const Session& session, std::function<void()> changed);
  Controls(const Controls&) = delete;
  Controls& operator=(const Controls&) = delete;

  GtkWidget* widget() const { return widget_; }

  // Shows the session's values.
  void refresh();

 private:
  struct Control {
    Controls* owner;
    const radiashafts_parameter* parameter;
    std::function<void(const double*)> show;
    std::function<void(double*)> read;
  };

  GtkWidget* makeGroup(const char* name);
  void add(const radiashafts_parameter& parameter, GtkTable* table, int row);
  void addPosition(Control& control, GtkTable* table, int row);
  void addNumber(Control& control, GtkTable* table, int row);
  void addSwitch(Control& control, GtkTable* table, int row);
  void addColor(Control& control, GtkTable* table, int row);
  void addList(Control& control, GtkTable* table, int row);
  void attach(const Control& control, GtkTable* table, int row, GtkWidget* widget);
  std::string labelOf(const radiashafts_parameter& parameter);
  static void onChange(Control* control);

  const Session& session_;
  std::function<void()> changed_;
  GtkWidget* widget_;
  GtkSizeGroup* labels_;                 // of one width in all groups
  std::list<Control> controls_;          // signals keep their addresses
  std::string mnemonics_ = "cfhoprstv";  // letters that are taken; the dialog's own at first
  bool isRefreshing_ = false;
};

}  // namespace radiashafts::gimp
