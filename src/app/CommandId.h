// The command numbers of the program: the vocabulary that menus, keys, toolbars and actions share.
#pragma once

namespace tavrin {

enum class CommandId : int {
    kNew = 57600,
    kOpen = 57601,
    kSave = 57603,
    kSaveAs = 57604,
    kMerge = 32771,
    kExportOptions = 32898,
    kExportShaderSource = 32901,
    kExportCompiledShader = 32902,
    kExportRenderInterface = 32903,
    kExportShaderInterface = 32904,
    kExportAll = 32900,
    kRunScript = 32915,
    kHaltScript = 32917,
    kExit = 57665,

    kRenderHistory = 32906,
    kCut = 57635,
    kCopy = 57634,
    kPaste = 57637,
    kDelete = 32774,
    kStowAllSliders = 32844,
    kUnstowAllSliders = 32845,
    kPinAllSliders = 32846,
    kUnpinAllSliders = 32847,
    kLockAllSliders = 32848,
    kUnlockAllSliders = 32849,
    kSelectAllBoxes = 32775,
    kUnselectAllBoxes = 32776,

    kBoxFinder = 32907,
    kMenuFinder = 32908,

    kFitToWindow = 32777,
    kZoomReset = 32778,
    kZoomIn = 32779,
    kZoomOut = 32780,

    kFreezeSliders = 32864,
    kDisplayIcons = 32787,
    kStraightTraceLines = 32788,
    kLinesOverBoxes = 32789,
    kShowVarnames = 32790,
    kLockDesk = 32800,
    kStatusBar = 32795,
    kScrollBars = 32861,
    kSliderDesk = 32850,
    kKeepHistory = 32910,
    kSoundEffects = 32909,
    kDebugMode = 32860,
    kRenderOptions = 32781,
    kArgumentEditor = 32782,
    kShowWallpaper = 32878,
    kTileWallpaper = 32877,
    kSetWallpaper = 32879,

    kRenderIt = 32792,
    kStopRender = 32793,
    kDisplayLog = 32889,
    kClearLog = 32892,
    kViewShaderSource = 32794,
    kViewRenderInterface = 32896,
    kViewShaderInterface = 32897,
    kMultipleRenders = 32938,

    kShaderHelp = 32797,
    kOnlineDocumentation = 32918,
    kAbout = 57664,
    kCustomize = 36864,
    kReloadOperators = 32940,
};

}  // namespace tavrin
