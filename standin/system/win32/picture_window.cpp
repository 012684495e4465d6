#include "standin/system/picture_window.h"
#include <windows.h>

#include "standin/system/drawing.h"

namespace radiashafts::standin {
namespace {

constexpr char className[] = "PictureWindow";
constexpr DWORD style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;

LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_PAINT) {
    const auto* picture =
        reinterpret_cast<const ShownPicture*>(GetWindowLongPtrA(window, GWLP_USERDATA));
    PAINTSTRUCT paint;
    const HDC context = BeginPaint(window, &paint);
    if (picture != nullptr) {
      drawPixels(context, 0, 0, picture->width, picture->height, picture->pixels.data());
    }
    EndPaint(window, &paint);
    return 0;
  }
  if (message == WM_CLOSE) return 0;
  return DefWindowProcA(window, message, w, l);
}

void registerClass() {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = procedure;
  windowClass.hInstance = GetModuleHandleA(nullptr);
  windowClass.hCursor = LoadCursorA(nullptr, IDC_ARROW);
  windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(DKGRAY_BRUSH));
  windowClass.lpszClassName = className;
  RegisterClassA(&windowClass);  // fails if already registered, which is harmless
}

}  // namespace

const bool hasWindows = true;

struct PictureWindow::State {
  ShownPicture picture;
  HWND window = nullptr;
};

ShownPicture PictureWindow::maximumSize() {
  constexpr int frame = 20;
  return {GetSystemMetrics(SM_CXFULLSCREEN) - frame, GetSystemMetrics(SM_CYFULLSCREEN) - frame, {}};
}

PictureWindow::PictureWindow(const std::string& title, ShownPicture picture)
    : state_(std::make_unique<State>()) {
  state_->picture = std::move(picture);
  registerClass();
  RECT rect{0, 0, state_->picture.width, state_->picture.height};
  AdjustWindowRect(&rect, style, FALSE);
  state_->window =
      CreateWindowA(className, title.c_str(), style, 0, 0, rect.right - rect.left,
                    rect.bottom - rect.top, nullptr, nullptr, GetModuleHandleA(nullptr), nullptr);
  if (state_->window == nullptr) return;
  SetWindowLongPtrA(state_->window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&state_->picture));
  ShowWindow(state_->window, SW_SHOW);
  UpdateWindow(state_->window);
  EnableWindow(state_->window, FALSE);
}

PictureWindow::~PictureWindow() {
  if (state_->window != nullptr) DestroyWindow(state_->window);
}

void* PictureWindow::handle() const {
  return state_->window;
}

}  // namespace radiashafts::standin
