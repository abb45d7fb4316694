// Everything that a device tells of a layer.
#pragma once

#include <string>
#include <vector>

#include "json/reflection.h"
#include "lcdprotocolimpl/layer/layer.h"

namespace LCD::ProtocolImpl {

struct s_Window {
    int width = -1;
    int height = -1;
    int x = -1;
    int y = -1;
    AJSON(width, height, x, y)
};

struct s_LayerWindow {
    int layerId = -1;
    s_Window window;
    AJSON(layerId, window)
};

struct s_LayerAspectRatioBody {
    int aspectRatio = -1;
    int locked = -1;
    AJSON(aspectRatio, locked)
};

struct s_LayerGeneralBody {
    std::string name;
    int isBackground = -1;
    int isFreeze = -1;
    int isMonochrome = -1;
    int isInverse = -1;
    int flipType = -1;
    int capacity = -1;
    AJSON(name, isBackground, isFreeze, isMonochrome, isInverse, flipType, capacity)
};

struct s_LayerIdGeneral {
    int layerId = -1;
    s_LayerGeneralBody general;
    AJSON(layerId, general)
};

struct s_LayerZorderBody {
    int type = -1;
    int para = -1;
    AJSON(type, para)
};

struct s_LayerCropBody {
    int enable = -1;
    int widthRatio = -1;
    int heightRatio = -1;
    int xRatio = -1;
    int yRatio = -1;
    AJSON(enable, widthRatio, heightRatio, xRatio, yRatio)
};

struct s_LayerZoomMode {
    int mode = -1;
    AJSON(mode)
};

struct s_LayerZoomModeBody {
    int layerId = -1;
    int mode = -1;
    AJSON(layerId, mode)
};

struct s_LayerBoderSize {
    int hWidth = -1;
    int vWidth = -1;
    AJSON(hWidth, vWidth)
};

struct s_LayerBoderColor {
    int R = -1;
    int G = -1;
    int B = -1;
    int opacity = -1;
    AJSON(R, G, B, opacity)
};

struct s_LayerBorderBody {
    int enable = -1;
    int type = -1;
    s_LayerBoderSize size;
    s_LayerBoderColor color;
    AJSON(enable, type, size, color)
};

struct s_LayerShadowGeneral {
    int enable = -1;
    int feather = -1;
    AJSON(enable, feather)
};

struct s_LayerShadowWindow {
    int width = -1;
    int height = -1;
    int x = -1;
    int y = -1;
    AJSON(width, height, x, y)
};

struct s_LayerShadowColor {
    int R = -1;
    int G = -1;
    int B = -1;
    int opacity = -1;
    AJSON(R, G, B, opacity)
};

struct s_LayerShadowBody {
    s_LayerShadowGeneral general;
    s_LayerShadowWindow window;
    s_LayerShadowColor color;
    AJSON(general, window, color)
};

struct s_LayerMask {
    int enable = -1;
    int left = -1;
    int leftRatio = -1;
    int right = -1;
    int rightRatio = -1;
    int top = -1;
    int topRatio = -1;
    int buttom = -1;
    int buttomRatio = -1;
    AJSON(enable, left, leftRatio, right, rightRatio, top, topRatio, buttom, buttomRatio)
};

struct s_LayerAudio {
    int enable = -1;
    int volume = -1;
    int isMute = -1;
    AJSON(enable, volume, isMute)
};

struct s_LayerSafeFrame {
    int id = -1;
    int type = -1;
    int widthRatio = -1;
    int heightRatio = -1;
    AJSON(id, type, widthRatio, heightRatio)
};

struct s_UMDColor {
    s_LayerBoderColor foregroundColor;
    s_LayerBoderColor backgroundColor;
    AJSON(foregroundColor, backgroundColor)
};

struct s_LayerUMDInfo {
    int enable = -1;
    int area = -1;
    int type = -1;
    std::string name;
    s_UMDColor color;
    AJSON(enable, area, type, name, color)
};

struct s_RGB {
    int R = -1;
    int G = -1;
    int B = -1;
    AJSON(R, G, B)
};

struct s_LayerCutoutPos {
    int x = -1;
    int y = -1;
    AJSON(x, y)
};

struct s_LayerCutoutCursorPos {
    int enable = -1;
    s_LayerCutoutPos pos;
    AJSON(enable, pos)
};

struct s_LayerCutoutIntelligence {
    int mattingStrength = -1;
    int gainAdjust = -1;
    s_RGB color;
    s_LayerCutoutPos pos;
    AJSON(mattingStrength, gainAdjust, color, pos)
};

struct s_LayerCutoutHue {
    s_RGB color;
    int hueClip = -1;
    int hueRamp = -1;
    int saturationClip = -1;
    int saturationGain = -1;
    int spill = -1;
    int shadow = -1;
    int highLigh = -1;
    AJSON(color, hueClip, hueRamp, saturationClip, saturationGain, spill, shadow, highLigh)
};

struct s_LayerCutoutForegroundColor {
    int enable = -1;
    int R = -1;
    int G = -1;
    int B = -1;
    AJSON(enable, R, G, B)
};

struct s_LayerCutoutKeySource {
    int followInput = -1;
    int sourceType = -1;
    int sourceId = -1;
    AJSON(followInput, sourceType, sourceId)
};

struct s_LayerCutoutBrightness {
    int threshold = -1;
    int gain = -1;
    int keyInverse = -1;
    s_LayerCutoutForegroundColor foregroundColor;
    s_LayerCutoutKeySource keySource;
    AJSON(threshold, gain, keyInverse, foregroundColor, keySource)
};

struct s_LayerCutoutBody {
    int enable = -1;
    int type = -1;
    s_LayerCutoutIntelligence intelligence;
    s_LayerCutoutHue hue;
    s_LayerCutoutBrightness brightness;
    s_LayerCutoutCursorPos cursor;
    AJSON(enable, type, intelligence, hue, brightness, cursor)
};

struct s_LayerCutout {
    int layerId = -1;
    s_LayerCutoutBody cutout;
    AJSON(layerId, cutout)
};

struct s_LayerThreeDBody {
    int enable = -1;
    AJSON(enable)
};

struct s_LayerDetail {
    int layerId = -1;
    s_LayerIdObj layerIdObj;
    int enable = 0;
    s_LayerSourceBody source;
    s_Window window;
    s_LayerAspectRatioBody aspectRatio;
    s_LayerGeneralBody general;
    s_LayerZorderBody zorder;
    s_LayerCropBody crop;
    s_LayerZoomMode scale;
    s_LayerBorderBody border;
    s_LayerShadowBody shadow;
    s_LayerMask mask;
    s_LayerAudio audio;
    std::vector<s_LayerSafeFrame> safeFrames;
    std::vector<s_LayerUMDInfo> UMD;
    int selected = -1;
    s_LayerCutoutBody cutout;
    s_LayerThreeDBody threeD;
    int transitionFollow = 0;
    AJSON(layerId, layerIdObj, enable, source, window, aspectRatio, general, zorder, crop, scale, border, shadow, mask,
          audio, safeFrames, UMD, selected, cutout, threeD, transitionFollow)
};

struct s_LayerDetailPage {
    std::vector<s_LayerDetail> list;
    int count = -1;
    int page = -1;
    int totalCount = -1;
    int totalPage = -1;
    AJSON(list, count, page, totalCount, totalPage)
};

}  // namespace LCD::ProtocolImpl
