// SPDX-License-Identifier: Apache-2.0
// The form language: the text from which the render options form is built.
#pragma once

namespace tavrin {

class CArchive;
class CRenderOptionsEditor;
class FormHost;
class Report;

// Reads one form section, from behind its keyword, into the form. Initial values go to the host as each
// widget ends. On failure false, the cause reported with its place; the widgets that were complete stay
// in the form, and the archive stands behind what was read.
bool ReadForm(CArchive& archive, CRenderOptionsEditor& form, FormHost& host, Report& report);

}  // namespace tavrin
