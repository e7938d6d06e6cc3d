// SPDX-License-Identifier: Apache-2.0
// Pictures compared with references that were looked at before they were accepted.
#pragma once

#include <QImage>
#include <QString>
#include <string>
#include <vector>

namespace tavrin::test {

// How far two pictures of the same thing may be apart: a channel by so much without any notice, and so many
// pixels by more.
struct PictureTolerance {
    int channel = 2;
    int pixels = 0;
};

// In how many pixels the two differ beyond what a channel may; all of the larger one if their sizes differ.
int CountDifferences(const QImage& one, const QImage& other, int channel);
// The first picture, faint, with each such pixel in red.
QImage DifferencePicture(const QImage& one, const QImage& other, int channel);

// A folder of references and a folder for what differs from them. Alpha never counts. With `update` pictures
// are written in place of being compared.
class PictureShelf {
  public:
    PictureShelf(std::string references, std::string results, bool update)
        : m_references(std::move(references)), m_results(std::move(results)), m_update(update) {}

    // Empty if the picture is like the reference of the name, else what is wrong and where it can be seen:
    // the picture and its difference are written among the results. `way` tells two results of one name
    // apart. A reference that is missing is wrong.
    std::string Compare(const QImage& picture, const std::string& name, const std::string& way,
                        PictureTolerance tolerance) const;
    // Without folder and ending, in order.
    std::vector<std::string> References() const;

  private:
    std::string Written(const QImage& picture, const std::string& name) const;

    std::string m_references;
    std::string m_results;
    bool m_update;
};

// The references of the source tree. The variable TAVRIN_UPDATE_PICTURES asks for new ones: look at each of
// them, enlarged, before it is kept.
PictureShelf DeskPictureShelf();

}  // namespace tavrin::test
