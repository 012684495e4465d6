#include "hosts/gimp/dialog.h"

#include <filesystem>
#include <string>

#include <libgimp/gimp.h>
#include <libgimp/gimpui.h>

#include "hosts/gimp/controls.h"
#include "hosts/gimp/preset_row.h"
#include "hosts/gimp/preview.h"

namespace radiashafts::gimp {
namespace {

constexpr int resetResponse = 1;
constexpr int width = 1060;
constexpr int height = 700;

// Opens the guide where an installation has it, or a build.
void showGuide(const gchar* /*topic*/, gpointer /*context*/) {
  namespace fs = std::filesystem;
  std::error_code failure;
  const fs::path folder = fs::read_symlink("/proc/self/exe", failure).parent_path();
  const bool isInstalled = fs::exists(folder / RADIASHAFTS_INSTALLED_GUIDE, failure);
  const fs::path guide =
      folder / (isInstalled ? RADIASHAFTS_INSTALLED_GUIDE : RADIASHAFTS_SOURCE_GUIDE);
  const std::string file = guide.lexically_normal();
  GError* error = nullptr;
  if (gtk_show_uri(nullptr, ("file://" + file).c_str(), GDK_CURRENT_TIME, &error)) return;
  g_message("The guide is the file %s. It cannot be shown here: %s", file.c_str(), error->message);
  g_error_free(error);
}

class Dialog {
 public:
  Dialog(const char* procedure, const Drawable& drawable, const Session& session)
      : session_(session),
        preview_(drawable, session, [this] { showValues(); }),
        controls_(session, [this] { preview_.update(); }),
        presets_(session, [this] { showValues(); }) {
    window_ = gimp_dialog_new("Radiashafts", "radiashafts", nullptr, GtkDialogFlags{}, showGuide,
                              procedure, "_Reset", resetResponse, "_Cancel", GTK_RESPONSE_CANCEL,
                              "_OK", GTK_RESPONSE_OK, nullptr);
    gtk_dialog_set_alternative_button_order(GTK_DIALOG(window_), GTK_RESPONSE_OK, resetResponse,
                                            GTK_RESPONSE_CANCEL, -1);
    gtk_dialog_set_default_response(GTK_DIALOG(window_), GTK_RESPONSE_OK);
    gimp_window_set_transient(GTK_WINDOW(window_));
    gtk_window_set_default_size(GTK_WINDOW(window_), width, height);

    GtkWidget* const left = gtk_vbox_new(FALSE, 12);
    gtk_box_pack_start(GTK_BOX(left), preview_.widget(), TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(left), presets_.widget(), FALSE, FALSE, 0);
    GtkWidget* const both = gtk_hbox_new(FALSE, 12);
    gtk_container_set_border_width(GTK_CONTAINER(both), 12);
    gtk_box_pack_start(GTK_BOX(both), left, TRUE, TRUE, 0);
    gtk_box_pack_start(GTK_BOX(both), controls_.widget(), FALSE, FALSE, 0);
    GtkWidget* const content = gtk_dialog_get_content_area(GTK_DIALOG(window_));
    gtk_box_pack_start(GTK_BOX(content), both, TRUE, TRUE, 0);
    gtk_widget_show_all(both);
  }
  ~Dialog() { gtk_widget_destroy(window_); }
  Dialog(const Dialog&) = delete;
  Dialog& operator=(const Dialog&) = delete;

  bool run() {
    for (;;) {
      const int response = gimp_dialog_run(GIMP_DIALOG(window_));
      if (response != resetResponse) return response == GTK_RESPONSE_OK;
      check(session_, radiashafts_reset(session_.get()));
      presets_.forget();
      showValues();
    }
  }

 private:
  void showValues() {
    controls_.refresh();
    preview_.update();
  }

  const Session& session_;
  Preview preview_;
  Controls controls_;
  PresetRow presets_;
  GtkWidget* window_;
};

}  // namespace

bool runDialog(const char* procedure, const Drawable& drawable, const Session& session) {
  gimp_ui_init("radiashafts", TRUE);
  return Dialog(procedure, drawable, session).run();
}

}  // namespace radiashafts::gimp
