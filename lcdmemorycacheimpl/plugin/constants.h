// Names of the plug-in and of its components.
#pragma once

namespace LCD::MemoryCacheImpl::constants {

inline constexpr char PLUGIN_NAME[] = "lcdmemorycacheimpl";
inline constexpr char PLUGIN_VERSION[] = "1.0.0";

inline constexpr char COMP_MEMORYCACHE_USER_NAME[] = "lcd.memorycacheimpl.user";
inline constexpr char COMP_MEMORYCACHE_INTERFACEBRIEF_NAME[] = "lcd.memorycacheimpl.interface.brief";
inline constexpr char COMP_MEMORYCACHE_ASSESS_NAME[] = "lcd.memorycacheimpl.assess";
inline constexpr char COMP_MEMORYCACHE_SCREENBRIEF_NAME[] = "lcd.memorycacheimpl.screen.brief";
inline constexpr char COMP_MEMORYCACHE_SWITCHEFFECT_NAME[] = "lcd.memorycacheimpl.screen.switcheffect";
inline constexpr char COMP_MEMORYCACHE_SWITCHMODE_NAME[] = "lcd.memorycacheimpl.screen.switchmode";
inline constexpr char COMP_MEMORYCACHE_LAYERBRIEF_NAME[] = "lcd.memorycacheimpl.layer.brief";
inline constexpr char COMP_MEMORYCACHE_NODE_NAME[] = "lcd.memorycacheimpl.node";
inline constexpr char COMP_MEMORYCACHE_PRESETSETTING_NAME[] = "lcd.memorycacheimpl.scene.settings";
inline constexpr char COMP_MEMORYCACHE_NODEBRIEF_NAME[] = "lcd.memorycacheimpl.node.list";
inline constexpr char COMP_MEMORYCACHE_SCREENTAKE_NAME[] = "lcd.memorycacheimpl.screen.take";
inline constexpr char COMP_MEMORYCACHE_ABOUTUS_NAME[] = "lcd.memorycacheimpl.aboutus";
inline constexpr char COMP_MEMORYCACHE_SCREENDETAILTAKE_NAME[] = "lcd.memorycacheimpl.screen.detail.take";
inline constexpr char COMP_MEMORYCACHE_TRANSITIONPREVIEW_NAME[] = "lcd.memorycacheimpl.transition.preview";
inline constexpr char COMP_MEMORYCACHE_SYSTEMDETAIL_NAME[] = "lcd.memorycacheimpl.system.detail";
inline constexpr char COMP_MEMORYCACHE_SEQUENCE_NAME[] = "lcd.memorycacheimpl.sequence";

}  // namespace LCD::MemoryCacheImpl::constants
