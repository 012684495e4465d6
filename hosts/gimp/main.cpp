// The plug-in as GIMP sees it: one procedure with a place in the menu.
#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include <libgimp/gimp.h>

#include "hosts/gimp/arguments.h"
#include "hosts/gimp/dialog.h"
#include "hosts/gimp/drawable.h"
#include "hosts/gimp/last_values.h"
#include "hosts/gimp/session.h"

namespace radiashafts::gimp {
namespace {

constexpr char procedureName[] = "plug-in-radiashafts";

// The arguments of every filter.
constexpr std::array<GimpParamDef, 3> commonArguments{{
    {GIMP_PDB_INT32, const_cast<gchar*>("run-mode"),
     const_cast<gchar*>("The run mode { RUN-INTERACTIVE (0), RUN-NONINTERACTIVE (1), "
                        "RUN-WITH-LAST-VALS (2) }")},
    {GIMP_PDB_IMAGE, const_cast<gchar*>("image"), const_cast<gchar*>("The image")},
    {GIMP_PDB_DRAWABLE, const_cast<gchar*>("drawable"),
     const_cast<gchar*>("The layer, mask or channel that gets the rays")},
}};

void query() {
  std::vector<Argument> own = arguments();
  std::vector<GimpParamDef> all(commonArguments.begin(), commonArguments.end());
  for (Argument& argument : own) {
    all.push_back({argument.type, argument.name.data(), argument.description.data()});
  }
  gimp_install_procedure(
      procedureName, "Soft rays of light that stream out of a point of the picture",
      "Selects a lightness range of the drawable, smears it away from a light, tints it and blends "
      "it over the drawable.",
      "Halvorsund", "Halvorsund", "2026", "_Radiashafts...", "RGB*, GRAY*", GIMP_PLUGIN,
      static_cast<gint>(all.size()), 0, all.data(), nullptr);
  gimp_plugin_menu_register(procedureName, "<Image>/Filters/Light and Shadow/Light");
}

// Shows how far the render is. Cancel in GIMP ends the plug-in.
int showProgress(void* context, double done) {
  double& shown = *static_cast<double*>(context);
  if (done >= shown + 0.01) {
    gimp_progress_update(done);
    shown = done;
  }
  return 1;
}

void render(const Session& session, const Drawable& drawable) {
  gimp_progress_init("Radiashafts");
  Picture picture = drawable.wholePicture();
  const radiashafts_picture view = picture.view();
  double shown = 0;
  check(session, radiashafts_render(session.get(), &view, nullptr, &view, showProgress, &shown));
  if (!drawable.replace(picture)) g_message("The selection leaves out the whole drawable.");
  gimp_progress_end();
}

// False when the user cancels.
bool run(const GimpParam* given) {
  gegl_init(nullptr, nullptr);
  const auto mode = static_cast<GimpRunMode>(given[0].data.d_int32);
  const Session session = openSession();
  const Drawable drawable(given[2].data.d_drawable);
  if (mode == GIMP_RUN_NONINTERACTIVE) {
    setArguments(session, given + commonArguments.size());
    render(session, drawable);
    return true;
  }
  loadLastValues(session);
  if (mode == GIMP_RUN_INTERACTIVE && !runDialog(procedureName, drawable, session)) return false;
  render(session, drawable);
  gimp_displays_flush();
  if (mode == GIMP_RUN_INTERACTIVE) keepLastValues(session);
  return true;
}

// The answers of a procedure: how it ended, and why it failed.
void run(const gchar* /*name*/, gint /*givenCount*/, const GimpParam* given, gint* answerCount,
         GimpParam** answers) {
  static std::string reason;
  static std::array<GimpParam, 2> answer;
  answer[0].type = GIMP_PDB_STATUS;
  answer[0].data.d_status = GIMP_PDB_SUCCESS;
  *answerCount = 1;
  *answers = answer.data();
  try {
    if (!run(given)) answer[0].data.d_status = GIMP_PDB_CANCEL;
  } catch (const std::exception& error) {
    reason = error.what();
    answer[0].data.d_status = GIMP_PDB_EXECUTION_ERROR;
    answer[1].type = GIMP_PDB_STRING;
    answer[1].data.d_string = reason.data();
    *answerCount = 2;
  }
}

}  // namespace
}  // namespace radiashafts::gimp

const GimpPlugInInfo PLUG_IN_INFO = {nullptr, nullptr, radiashafts::gimp::query,
                                     radiashafts::gimp::run};

MAIN()
