// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>

#include <algorithm>

#include "forms/FormTestHost.h"

namespace tavrin::test {

class FormButtonProperties : public FormTest {};

TEST_F(FormButtonProperties, AButtonTakesItsProperties) {
    const auto& button = ReadOne<CFormButton>(
        "button", "buttonlabel Go now\nactionto form\nactionmsg system\nactionarg ls -l");
    EXPECT_EQ(button.label, "Go now");
    EXPECT_EQ(button.action.to, "form");
    EXPECT_EQ(button.action.message, "system");
    EXPECT_EQ(button.action.argument, "ls -l");
    EXPECT_TRUE(button.action.IsSet());
    EXPECT_FALSE(ReadOne<CFormButton>("button", "actionmsg system").action.IsSet());
    EXPECT_TRUE(host.stored.empty());
}

TEST_F(FormButtonProperties, ALedButtonTakesItsProperties) {
    const auto& button = ReadOne<CFormLedButton>(
        "ledbutton",
        "state 1\nbuttonlabel Light\nenvname L\nenvon yes\nenvoff no\nactionto a\nactionmsg b\nnotavrnsave");
    EXPECT_TRUE(button.state);
    EXPECT_EQ(button.label, "Light");
    EXPECT_EQ(button.envon, "yes");
    EXPECT_EQ(button.envoff, "no");
    EXPECT_EQ(button.action.to, "a");
    EXPECT_EQ(button.action.message, "b");
    EXPECT_EQ(host.stored, (Stored{{"L", "yes"}}));
    EXPECT_EQ(host.unsaved, Lines{"L"});
    EXPECT_EQ(sink.log, "");
}

TEST_F(FormButtonProperties, ALedButtonStoresPlainStatesByDefault) {
    ReadOne<CFormLedButton>("ledbutton", "state 1");
    EXPECT_FALSE(ReadOne<CFormLedButton>("ledbutton", "state 0\nenvname L").state);
    ReadOne<CFormLedButton>("ledbutton", "state 0\nenvname L\nenvoff no");
    EXPECT_EQ(host.stored, (Stored{{"", "1"}, {"L", "0"}, {"L", "no"}}));
    EXPECT_EQ(sink.log, "");
}

TEST_F(FormButtonProperties, ABadOrMissingStateIsLoggedAndCountsAsOff) {
    EXPECT_FALSE(ReadOne<CFormLedButton>("ledbutton", "state true\nbuttonlabel Light\nenvon true").state);
    EXPECT_EQ(sink.log, "unknown state value true specified for LED button Light\r\n");
    sink.log.clear();
    EXPECT_FALSE(ReadOne<CFormLedButton>("ledbutton", "buttonlabel 100%s").state);
    EXPECT_EQ(sink.log, "unknown state value  specified for LED button 100%s\r\n");
    EXPECT_EQ(host.stored, (Stored{{"", "0"}, {"", "0"}}));
    EXPECT_TRUE(sink.alerts.empty());
}

TEST_F(FormButtonProperties, AChooserTakesItsProperties) {
    const auto& chooser = ReadOne<CFormChooser>("chooser",
                                                "value Be\nenvname C\nresize false\nactionto a\nactionmsg "
                                                "b\nchoosercontents {\nalpha\nbeta two\n}\nnotavrnsave");
    EXPECT_EQ(chooser.lines, (Lines{"alpha", "beta two"}));
    EXPECT_EQ(chooser.selected, 1);
    EXPECT_FALSE(chooser.resize);
    EXPECT_EQ(chooser.action.to, "a");
    EXPECT_EQ(chooser.action.message, "b");
    EXPECT_EQ(host.stored, (Stored{{"C", "Be"}})) << "the value as written";
    EXPECT_EQ(host.unsaved, Lines{"C"});
    EXPECT_TRUE(host.shaderTypes.empty());
    EXPECT_TRUE(ReadOne<CFormChooser>("chooser", "").resize);
}

TEST_F(FormButtonProperties, AChooserSelectsTheFirstLineThatBeginsWithTheValue) {
    const auto& chooser =
        ReadOne<CFormChooser>("chooser", "value ab\nenvname C\nchoosercontents {\nxab\nABc\nab\n}");
    EXPECT_EQ(chooser.selected, 1);
    EXPECT_EQ(host.stored, (Stored{{"C", "ab"}}));
}

TEST_F(FormButtonProperties, AChooserWithoutMatchingLineStoresNothing) {
    const auto& chooser =
        ReadOne<CFormChooser>("chooser", "value z\nenvname C\nchoosercontents {\na\n}\nnotavrnsave");
    EXPECT_EQ(chooser.selected, CFormChooser::kNothing);
    ReadOne<CFormChooser>("chooser", "envname C");
    EXPECT_TRUE(host.stored.empty());
    EXPECT_EQ(host.unsaved, Lines{"C"}) << "kept out of documents all the same";
}

TEST_F(FormButtonProperties, AChooserWhoseDefaultIsNoneOfItsLinesIsToldOnce) {
    ReadOne<CFormChooser>("chooser", "value z\nenvname C\nchoosercontents {\na\n}");
    EXPECT_EQ(sink.log,
              "WARNING: site.def near line 9: the value \"z\" of chooser C is none of its lines: the option "
              "has no default\r\n");
    form.LoadDefaults(host);
    EXPECT_EQ(std::count(sink.log.begin(), sink.log.end(), '\n'), 1);
    sink.log.clear();
    ReadOne<CFormChooser>("chooser", "envname C\nchoosercontents {\na\n}");
    EXPECT_THAT(sink.log, testing::HasSubstr("the value \"\" of chooser C is none of its lines"));
    sink.log.clear();
    ReadOne<CFormChooser>("chooser", "value z\nactionto a\nchoosercontents {\na\n}");
    EXPECT_THAT(sink.log,
                testing::HasSubstr("the value \"z\" of chooser without envname is none of its lines"));
    sink.log.clear();
    ReadOne<CFormChooser>("chooser", "actionto a\nchoosercontents {\na\n}");
    ReadOne<CFormChooser>("chooser", "envname C\nvalue A\nchoosercontents {\nab\n}");
    EXPECT_EQ(sink.log, "") << "one that only sends an action needs no default";
    EXPECT_TRUE(sink.alerts.empty());
}

TEST_F(FormButtonProperties, AShaderTypeChooserFillsTheToolbar) {
    ReadOne<CFormChooser>("chooser",
                          "choosercontents {\nsurface\nlight\n}\nenvname TAVRN_SHADER_TYPE\nvalue s");
    EXPECT_EQ(host.shaderTypes, (Lines{"surface", "light"}));
    EXPECT_EQ(host.stored, (Stored{{"TAVRN_SHADER_TYPE", "s"}}));
    EXPECT_TRUE(Read("{\nclearall\n}\n"));
    EXPECT_TRUE(host.shaderTypes.empty());
    EXPECT_EQ(host.clears, 1);
}

TEST_F(FormButtonProperties, AShaderTypeChooserInAFrameClearsTheToolbarWithIt) {
    EXPECT_TRUE(Read(
        "{\nframe {\nframe {\nchooser {\nenvname TAVRN_SHADER_TYPE\nchoosercontents {\na\n}\n}\n}\n}\n}\n"));
    EXPECT_EQ(host.shaderTypes, Lines{"a"});
    form.ClearAll(host);
    EXPECT_TRUE(host.shaderTypes.empty());
    EXPECT_FALSE(Read(
        "{\nframe {\nchooser {\nenvname TAVRN_SHADER_TYPE\nchoosercontents {\na\n}\n}\nbad {\n}\n}\n}\n"));
    EXPECT_TRUE(host.shaderTypes.empty()) << "the frame failed and was destroyed";
    EXPECT_EQ(host.clears, 2);
}

TEST_F(FormButtonProperties, OtherWidgetsLeaveTheToolbarAlone) {
    ReadOne<CFormChooser>("chooser", "envname OTHER\nchoosercontents {\na\n}");
    EXPECT_FALSE(Read("{\nchooser {\nenvname TAVRN_SHADER_TYPE\nbad\n}\n}\n"));
    form.ClearAll(host);
    EXPECT_TRUE(host.shaderTypes.empty());
    EXPECT_EQ(host.clears, 0);
}

TEST_F(FormButtonProperties, AnOkFieldTakesItsProperties) {
    const auto& field = ReadOne<CFormOkField>(
        "okfield",
        "defaults_actionto a\ndefaults_actionmsg b\ndefaults_actionarg c d\nok_actionto e\nok_actionmsg f\n"
        "ok_actionarg g\nshadowtype in\nshadowsize 2");
    EXPECT_EQ(field.defaults.to + field.defaults.message + field.defaults.argument, "abc d");
    EXPECT_EQ(field.ok.to + field.ok.message + field.ok.argument, "efg");
    EXPECT_FALSE(ReadOne<CFormOkField>("okfield", "").ok.IsSet());
    EXPECT_TRUE(host.stored.empty());
}

}  // namespace tavrin::test
