// All components of the plug-in. To add one, add its row, in catalogue order, and its name in constants.h.
#include "lcdmemorycacheimpl/plugin/componenttable.h"

#include "ktp/plugin.h"
#include "lcdmemorycacheimpl/assess/assess.h"
#include "lcdmemorycacheimpl/interface/interfacebrief.h"
#include "lcdmemorycacheimpl/layer/layerbrief.h"
#include "lcdmemorycacheimpl/node/node.h"
#include "lcdmemorycacheimpl/node/nodebrief.h"
#include "lcdmemorycacheimpl/plugin/constants.h"
#include "lcdmemorycacheimpl/preset/presetsetting.h"
#include "lcdmemorycacheimpl/screen/screenbrief.h"
#include "lcdmemorycacheimpl/screen/screendetailtake.h"
#include "lcdmemorycacheimpl/screen/screentake.h"
#include "lcdmemorycacheimpl/screen/switcheffect.h"
#include "lcdmemorycacheimpl/screen/switchmode.h"
#include "lcdmemorycacheimpl/screen/transitionpreview.h"
#include "lcdmemorycacheimpl/session/aboutus.h"
#include "lcdmemorycacheimpl/session/sequence.h"
#include "lcdmemorycacheimpl/session/systemdetail.h"
#include "lcdmemorycacheimpl/session/user.h"

namespace LCD::MemoryCacheImpl {
namespace {

using Components = ComponentTable<                                                   //
    Row<1, User, constants::COMP_MEMORYCACHE_USER_NAME>,                             //
    Row<3, InterfaceBrief, constants::COMP_MEMORYCACHE_INTERFACEBRIEF_NAME>,         //
    Row<5, Assess, constants::COMP_MEMORYCACHE_ASSESS_NAME>,                         //
    Row<6, ScreenBrief, constants::COMP_MEMORYCACHE_SCREENBRIEF_NAME>,               //
    Row<7, SwitchEffect, constants::COMP_MEMORYCACHE_SWITCHEFFECT_NAME>,             //
    Row<8, SwitchMode, constants::COMP_MEMORYCACHE_SWITCHMODE_NAME>,                 //
    Row<11, LayerBrief, constants::COMP_MEMORYCACHE_LAYERBRIEF_NAME>,                //
    Row<13, Node, constants::COMP_MEMORYCACHE_NODE_NAME>,                            //
    Row<20, PresetSetting, constants::COMP_MEMORYCACHE_PRESETSETTING_NAME>,          //
    Row<23, NodeBrief, constants::COMP_MEMORYCACHE_NODEBRIEF_NAME>,                  //
    Row<32, ScreenTake, constants::COMP_MEMORYCACHE_SCREENTAKE_NAME>,                //
    Row<37, AboutUs, constants::COMP_MEMORYCACHE_ABOUTUS_NAME>,                      //
    Row<57, ScreenDetailTake, constants::COMP_MEMORYCACHE_SCREENDETAILTAKE_NAME>,    //
    Row<63, TransitionPreview, constants::COMP_MEMORYCACHE_TRANSITIONPREVIEW_NAME>,  //
    Row<67, SystemDetail, constants::COMP_MEMORYCACHE_SYSTEMDETAIL_NAME>,            //
    Row<73, Sequence, constants::COMP_MEMORYCACHE_SEQUENCE_NAME>>;

static_assert(Components::isAscending(), "the rows stand in catalogue order");
static_assert(Components::hasUniqueNames(), "two components have one name");

}  // namespace
}  // namespace LCD::MemoryCacheImpl

template <class T>
ktp::ComponentInfo ktp::ComponentTmpl<T>::componentInfo{
    &creator, &deletor, &getMessageHandler, LCD::MemoryCacheImpl::Components::nameOf<T>(), "{\"end\":0 }\r\n"};

KTP_EXPORT const std::array<const ktp::ComponentInfo*, LCD::MemoryCacheImpl::Components::size + 1>
    lcdmemorycacheimpl_ktp_componentInfoTable;
const std::array<const ktp::ComponentInfo*, LCD::MemoryCacheImpl::Components::size + 1>
    lcdmemorycacheimpl_ktp_componentInfoTable = LCD::MemoryCacheImpl::Components::pointers();

namespace LCD::MemoryCacheImpl {

const ktp::ComponentInfo* const* componentTable() { return lcdmemorycacheimpl_ktp_componentInfoTable.data(); }

}  // namespace LCD::MemoryCacheImpl
