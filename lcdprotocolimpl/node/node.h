// The node: the device on which the panel sits.
#pragma once

#include <list>
#include <string>
#include <vector>

#include "json/reflection.h"

namespace LCD::ProtocolImpl {

struct s_NodeGeneralBody {
    std::string name;
    AJSON(name)
};

/// A rename.
struct s_NodeGenera {
    int nodeId = -1;
    s_NodeGeneralBody general;
    AJSON(nodeId, general)
};

struct s_NodeModeBody {
    int workMode = 1;
    int masterSlave = 0;
    AJSON(workMode, masterSlave)
};

struct s_NodeMode {
    int nodeId = -1;
    s_NodeModeBody mode;
    AJSON(nodeId, mode)
};

struct s_SlotsStatus {
    int slot = -1;
    AJSON(slot)
};

struct s_NodeSlotsStatus {
    int nodeId = -1;
    std::vector<s_SlotsStatus> stateInfo;
    AJSON(nodeId, stateInfo)
};

struct s_NodeSubcard {
    int slotId = -1;
    int modelId = -1;
    int boardId = -1;
    int online = -1;
    AJSON(slotId, modelId, boardId, online)
};

struct s_BackupDetail {
    std::string sn;
    std::string ip;
    AJSON(sn, ip)
};

/// Which device stands in for which.
struct s_DeviceBackupInfo {
    s_BackupDetail master;
    std::list<s_BackupDetail> slave;
    AJSON(master, slave)
};

struct s_BackupProgress {
    int progress = -1;
    int state = -1;  ///< 2: a backup has taken over
    AJSON(progress, state)
};

struct s_CreateOrDeleteBackup {
    std::string masterSN;
    std::list<std::string> slaveSN;
    AJSON(masterSN, slaveSN)
};

struct s_CreateOrDeleteBackupResult {
    std::list<std::string> failList;
    AJSON(failList)
};

struct s_CascadeID {
    int id = -1;
    AJSON(id)
};

struct s_MonitorMode {
    int nodeId = -1;
    int mode = -1;
    AJSON(nodeId, mode)
};

struct s_NodeMonitorModeBody {
    int mode = -1;
    AJSON(mode)
};

struct s_NodeAuxBody {
    int followPreset = 0;
    AJSON(followPreset)
};

struct s_NodeAuxFollowPresetRequest {
    int nodeId = -1;
    int followPreset = -1;
    AJSON(nodeId, followPreset)
};

struct s_DeviceLayerModeBody {
    int mode = 0;
    AJSON(mode)
};

struct s_Phase {
    int enable = 0;
    int offset = 0;
    AJSON(enable, offset)
};

struct s_Genlock {
    int type = 0;
    int sourceId = -1;
    s_Phase phase;
    AJSON(type, sourceId, phase)
};

struct s_GenlockStatus {
    int status = 0;
    AJSON(status)
};

/// The local node.
struct s_NodeDetail {
    int nodeId = 1;
    int modelId = 0;
    int status = 1;
    std::string sn;
    std::string version;
    s_NodeGeneralBody general;
    int powerState = 0;
    s_NodeModeBody mode;
    std::vector<s_SlotsStatus> stateInfo;
    int networkType = 1;
    std::vector<s_NodeSubcard> subcards;
    int virtualId = 1;
    s_DeviceBackupInfo deviceBackup;
    s_NodeMonitorModeBody mvr;
    s_NodeAuxBody aux;
    s_DeviceLayerModeBody deviceLayerMode;
    // no key of the device fills these
    s_Genlock genlock;
    s_GenlockStatus genlockStatus;
    AJSON(nodeId, modelId, status, sn, version, general, powerState, mode, stateInfo, networkType, subcards, virtualId,
          deviceBackup, mvr, aux, deviceLayerMode)
};

struct s_NodeBrief {
    int nodeId = -1;
    int modelId = -1;
    std::string name;
    int online = -1;
    std::string onlineDetail;
    std::string ip;
    std::vector<int> favorite;
    AJSON(nodeId, modelId, name, online, onlineDetail, ip, favorite)
};

struct s_NodeBriefPage {
    int count = -1;
    int page = -1;
    int totalCount = -1;
    int totalPage = -1;
    std::vector<s_NodeBrief> list;
    int onlineNum = -1;
    int offlineNum = -1;
    int abnormalNum = -1;
    AJSON(count, page, totalCount, totalPage, list, onlineNum, offlineNum, abnormalNum)
};

// ---- what never travels

struct s_NodeStatusStatistics {
    int onlineNum = 0;
    int offlineNum = 0;
    int abnormalNum = 0;
};

struct s_NodeStatus {
    int modelId = 0;
    int status = 0;
};

struct s_DeviceBackupSummary {
    int type = 0;  ///< 1: this node stands in for another, 0: it doesn't
    std::string master;
    std::string slave;
    bool valid = true;
};

}  // namespace LCD::ProtocolImpl
