#include "screens/chart/keyword_edit.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "screens/common/dialog_buttons.h"
#include "screens/common/qt_text.h"

namespace vintar {

KeyWordEdit::KeyWordEdit(Workbench& wb, QWidget* parent)
    : QDialog(parent), wb_(wb), table_(LoadKeywords(wb.session)) {
  setObjectName("KeyWordEdit");
  setWindowTitle(tr("Edit Keywords"));
  const Session& s = wb_.session;
  auto* outer = new QVBoxLayout(this);
  auto* form = new QFormLayout;

  item_ = new QComboBox(this);
  item_->setObjectName("Item");
  for (int i = 0; i < kKeywordItems; ++i)
    item_->addItem(i < static_cast<int>(s.vocab.KeywordHeading.size()) ? Q(s.vocab.KeywordHeading[i])
                                                                       : QString::number(i));
  form->addRow(tr("&Item:"), item_);
  text_ = new QLineEdit(this);
  text_->setObjectName("Text1");
  text_->setMinimumWidth(360);
  form->addRow(tr("Item &Keywords:"), text_);
  transit_ = new QComboBox(this);
  transit_->setObjectName("Transit");
  for (int p = 1; p <= kPoints; ++p)
    transit_->addItem(p < static_cast<int>(s.vocab.PointName.size()) ? Q(s.vocab.PointName[p]) : QString::number(p));
  form->addRow(tr("&Transit:"), transit_);
  outer->addLayout(form);

  preview_ = new QLabel(this);
  preview_->setObjectName("lblPreview");
  preview_->setWordWrap(true);
  preview_->setFrameShape(QFrame::StyledPanel);
  preview_->setMinimumHeight(60);
  preview_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  outer->addWidget(preview_, 1);

  auto* box = OkCancelButtons(this);
  outer->addWidget(box);

  text_->setText(Q(table_.Text[0]));
  connect(item_, &QComboBox::currentIndexChanged, this, &KeyWordEdit::ItemChosen);
  connect(transit_, &QComboBox::currentIndexChanged, this, &KeyWordEdit::ShowPreview);
  connect(text_, &QLineEdit::textChanged, this, &KeyWordEdit::ShowPreview);
  ShowPreview();
}

void KeyWordEdit::ItemChosen(int index) {
  if (shown_ >= 0 && shown_ < kKeywordItems) table_.Text[shown_] = L(text_->text());
  shown_ = std::clamp(index, 0, kKeywordItems - 1);
  text_->setText(Q(table_.Text[shown_]));
  ShowPreview();
}

void KeyWordEdit::ShowPreview() {
  // How a hit of the chosen moving point to the item reads on the chart.
  KeywordTable shown = table_;
  shown.Text[shown_] = L(text_->text());
  const auto& headings = wb_.session.vocab.KeywordHeading;
  const int moving = transit_->currentIndex();
  QStringList lines;
  for (int item : {moving, shown_}) {
    if (item < 0 || item >= kKeywordItems || item >= static_cast<int>(headings.size())) continue;
    const QString words = Q(shown.Text[item]).trimmed();
    lines << Q(headings[item]) + ": " + (words.isEmpty() ? tr("(no keywords)") : words);
  }
  preview_->setText(lines.join('\n'));
}

void KeyWordEdit::accept() {
  table_.Text[shown_] = L(text_->text());
  if (!SaveKeywords(wb_.session, table_)) return;
  QDialog::accept();
}

}  // namespace vintar
