// All components of the plug-in. To add one, add its row, in catalogue order, and its name in constants.h.
#include "lcdmemorycacheimpl/plugin/componenttable.h"

#include "ktp/plugin.h"
#include "lcdmemorycacheimpl/plugin/constants.h"
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
    Row<7, SwitchEffect, constants::COMP_MEMORYCACHE_SWITCHEFFECT_NAME>,             //
    Row<8, SwitchMode, constants::COMP_MEMORYCACHE_SWITCHMODE_NAME>,                 //
    Row<37, AboutUs, constants::COMP_MEMORYCACHE_ABOUTUS_NAME>,                      //
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
