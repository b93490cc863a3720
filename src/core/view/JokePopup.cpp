#include "view/JokePopup.h"

#include <array>

namespace tvx {
namespace {

// Lines are broken by hand so that each fits the message width; the windows still wrap.
constexpr std::array kScript{
    JokeLine{"ごあいさつ", "やあ！ぼくはおまけのポップアップ。\n閉じられるものなら、閉じてみて？", "閉じる"},
    JokeLine{"ちょっと待って！", "えっ、もう閉じちゃうの？\nまだ来たばかりなのに……", "閉じる"},
    JokeLine{"ちょっと待って！", "あと1分だけ！\n1分でいいから、ここにいさせて。", "それでも閉じる"},
    JokeLine{"ちょっと待って！", "おねがい！\nこの窓、けっこう気に入ってるんだ。", "それでも閉じる"},
    JokeLine{"ちょっと待って！", "ほら、経験値もメルも時給も、\nちゃんと数えておくからさ。", "それでも閉じる"},
    JokeLine{"ちょっと待って！", "せめて記念に一枚……\nはい、チーズ！", "それでも閉じる"},
    JokeLine{"取引しよう", "じゃあ取引しよう。\n閉じないでくれたら、\n次のレベルアップを一緒に喜んであげる！",
             "お断り"},
    JokeLine{"取引しよう", "ポーション10個でどう？\n……あ、持ってないんだった。", "お断り"},
    JokeLine{"取引しよう", "それならドロップ率を2倍に！\n（そんな権限はありません）", "お断り"},
    JokeLine{"取引しよう", "メルを貸してあげる！\n……ちゃんと返してくれるならね。", "お断り"},
    JokeLine{"いじけ中", "むう……。\nどうせぼくなんて、おまけのおまけだよ。", "閉じる"},
    JokeLine{"いじけ中", "いいもん。\n隅っこで時給でも数えてるもん。", "閉じる"},
    JokeLine{"いじけ中", "……。\n（すねています。しばらくお待ちください）", "閉じる"},
    JokeLine{"いじけ中", "まだ閉じようとしてる？\nボタン、押されすぎて痛いんだけど。", "閉じる"},
    JokeLine{"最後のお願い", "わかった、本気なんだね。\nでも最後にひとつだけ聞いて。", "聞くだけね"},
    JokeLine{"最後のお願い", "今日の狩りもおつかれさま。\n休憩もちゃんと取ってね。", "うん"},
    JokeLine{"最後のお願い", "レベルアップしたら、\nまた呼んでね。きっとだよ？", "うん"},
    JokeLine{"お別れ", "それじゃあ……本当にさよならだね。\n（ハンカチを振っています）", "さよなら"},
    JokeLine{"お別れ", "ばいばい！\nまた一緒に遊ぼうね！", "ばいばい"},
};

} // namespace

std::span<const JokeLine> JokePopup::script()
{
    return kScript;
}

void JokePopup::open()
{
    m_line = 0;
    m_open = true;
}

const JokeLine& JokePopup::current() const
{
    return kScript[m_line];
}

bool JokePopup::attemptClose()
{
    if (!m_open || m_line + 1 >= kScript.size()) {
        m_open = false;
        return true;
    }
    ++m_line;
    return false;
}

} // namespace tvx
