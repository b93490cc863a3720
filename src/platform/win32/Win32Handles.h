#pragma once

#include <windows.h>

#include <utility>

namespace tvx::platform::win32 {

// One owned handle released by `Release`; a null handle is never released.
template <typename Handle, auto Release>
class Unique {
public:
    Unique() = default;
    explicit Unique(Handle handle) : m_handle(handle) {}
    ~Unique() { reset(); }
    Unique(Unique&& other) noexcept : m_handle(std::exchange(other.m_handle, Handle{})) {}
    Unique& operator=(Unique&& other) noexcept
    {
        if (this != &other)
            reset(std::exchange(other.m_handle, Handle{}));
        return *this;
    }
    Unique(const Unique&) = delete;
    Unique& operator=(const Unique&) = delete;

    Handle get() const { return m_handle; }
    explicit operator bool() const { return m_handle != Handle{}; }
    void reset(Handle handle = Handle{})
    {
        if (m_handle != Handle{})
            Release(m_handle);
        m_handle = handle;
    }
    Handle release() { return std::exchange(m_handle, Handle{}); }

private:
    Handle m_handle{};
};

using MemoryDC = Unique<HDC, &DeleteDC>;
using Bitmap = Unique<HBITMAP, &DeleteObject>;
using KernelHandle = Unique<HANDLE, &CloseHandle>;
using Window = Unique<HWND, &DestroyWindow>;

// A device context of a window, or of the whole screen for a null window.
class WindowDC {
public:
    explicit WindowDC(HWND window = nullptr) : m_window(window), m_dc(GetDC(window)) {}
    ~WindowDC()
    {
        if (m_dc != nullptr)
            ReleaseDC(m_window, m_dc);
    }
    WindowDC(const WindowDC&) = delete;
    WindowDC& operator=(const WindowDC&) = delete;

    HDC get() const { return m_dc; }
    explicit operator bool() const { return m_dc != nullptr; }

private:
    HWND m_window;
    HDC m_dc;
};

// An object selected into a DC for the scope; the previous one goes back at the end.
class Selection {
public:
    Selection(HDC dc, HGDIOBJ object) : m_dc(dc), m_previous(SelectObject(dc, object)) {}
    ~Selection()
    {
        if (m_previous != nullptr && m_previous != HGDI_ERROR)
            SelectObject(m_dc, m_previous);
    }
    Selection(const Selection&) = delete;
    Selection& operator=(const Selection&) = delete;

private:
    HDC m_dc;
    HGDIOBJ m_previous;
};

// A palette selected and realised in a DC for the scope; nothing for a null palette.
class PaletteSelection {
public:
    PaletteSelection(HDC dc, HPALETTE palette)
        : m_dc(dc), m_previous(palette != nullptr ? SelectPalette(dc, palette, FALSE) : nullptr)
    {
        if (m_previous != nullptr)
            RealizePalette(dc);
    }
    ~PaletteSelection()
    {
        if (m_previous != nullptr)
            SelectPalette(m_dc, m_previous, FALSE);
    }
    PaletteSelection(const PaletteSelection&) = delete;
    PaletteSelection& operator=(const PaletteSelection&) = delete;

private:
    HDC m_dc;
    HPALETTE m_previous;
};

// The clipboard, open for the scope. Another program may hold it: check `isOpen`.
class OpenedClipboard {
public:
    explicit OpenedClipboard(HWND owner = nullptr) : m_open(OpenClipboard(owner) != FALSE) {}
    ~OpenedClipboard()
    {
        if (m_open)
            CloseClipboard();
    }
    OpenedClipboard(const OpenedClipboard&) = delete;
    OpenedClipboard& operator=(const OpenedClipboard&) = delete;

    bool isOpen() const { return m_open; }

private:
    bool m_open;
};

// A COM interface pointer holding one reference.
template <typename Interface>
class ComPtr {
public:
    ComPtr() = default;
    ~ComPtr() { reset(); }
    ComPtr(ComPtr&& other) noexcept : m_pointer(std::exchange(other.m_pointer, nullptr)) {}
    ComPtr& operator=(ComPtr&& other) noexcept
    {
        if (this != &other) {
            reset();
            m_pointer = std::exchange(other.m_pointer, nullptr);
        }
        return *this;
    }
    ComPtr(const ComPtr&) = delete;
    ComPtr& operator=(const ComPtr&) = delete;

    Interface* get() const { return m_pointer; }
    Interface* operator->() const { return m_pointer; }
    explicit operator bool() const { return m_pointer != nullptr; }
    // For the out-parameter of a creating call; releases what was held.
    Interface** put()
    {
        reset();
        return &m_pointer;
    }
    void reset()
    {
        if (m_pointer != nullptr)
            std::exchange(m_pointer, nullptr)->Release();
    }

private:
    Interface* m_pointer = nullptr;
};

// COM for this thread while in scope. A thread already in the other apartment model can
// still use COM, so that case is not a failure; it just must not be uninitialised here.
class ComApartment {
public:
    ComApartment() : m_result(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)) {}
    ~ComApartment()
    {
        if (SUCCEEDED(m_result))
            CoUninitialize();
    }
    ComApartment(const ComApartment&) = delete;
    ComApartment& operator=(const ComApartment&) = delete;

    bool usable() const { return SUCCEEDED(m_result) || m_result == RPC_E_CHANGED_MODE; }

private:
    HRESULT m_result;
};

} // namespace tvx::platform::win32
