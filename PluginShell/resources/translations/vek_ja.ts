<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja" sourcelanguage="en">
<context>
    <name>BusyBar</name>
    <message>
        <source>Stop</source>
        <translation>中止</translation>
    </message>
</context>
<context>
    <name>CAboutDlg</name>
    <message>
        <source>Version</source>
        <translation>バージョン</translation>
    </message>
    <message>
        <source>Build</source>
        <translation>ビルド</translation>
    </message>
    <message>
        <source>64 bit</source>
        <translation>64 ビット</translation>
    </message>
</context>
<context>
    <name>CLanguageManager</name>
    <message>
        <source>language name</source>
        <translation>日本語</translation>
    </message>
    <message>
        <source>language number</source>
        <translation>1041</translation>
    </message>
</context>
<context>
    <name>CMessageBox</name>
    <message>
        <source>Don&apos;t save</source>
        <translation>保存しない</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>保存</translation>
    </message>
    <message>
        <source>Rotate</source>
        <translation>回転</translation>
    </message>
    <message>
        <source>No</source>
        <translation>いいえ</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>はい</translation>
    </message>
    <message>
        <source>Quit without saving</source>
        <translation>保存せずに終了</translation>
    </message>
    <message>
        <source>Don&apos;t quit</source>
        <translation>終了しない</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
    <message>
        <source>Dialog</source>
        <translation>ダイアログ</translation>
    </message>
</context>
<context>
    <name>HelpMenu</name>
    <message>
        <source>&amp;Help on the Web</source>
        <translation>オンラインヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;Support</source>
        <translation>サポート(&amp;S)</translation>
    </message>
    <message>
        <source>A&amp;cademy</source>
        <translation>アカデミー(&amp;C)</translation>
    </message>
    <message>
        <source>Sh&amp;op</source>
        <translation>ショップ(&amp;O)</translation>
    </message>
    <message>
        <source>Home &amp;Page</source>
        <translation>ホームページ(&amp;P)</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>ファイル(&amp;F)</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>開く(&amp;O)…</translation>
    </message>
    <message>
        <source>&amp;Save…</source>
        <translation>保存(&amp;S)…</translation>
    </message>
    <message>
        <source>&amp;Export…</source>
        <translation>書き出し(&amp;E)…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>終了(&amp;Q)</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>編集(&amp;E)</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>取り消す(&amp;U)</translation>
    </message>
    <message>
        <source>&amp;Reset</source>
        <translation>リセット(&amp;R)</translation>
    </message>
    <message>
        <source>&amp;Preferences…</source>
        <translation>環境設定(&amp;P)…</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>表示(&amp;V)</translation>
    </message>
    <message>
        <source>&amp;Grid</source>
        <translation>グリッド(&amp;G)</translation>
    </message>
    <message>
        <source>&amp;Handles</source>
        <translation>ハンドル(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>ヘルプ(&amp;H)</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>バージョン情報(&amp;A)</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>開く…</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>環境設定</translation>
    </message>
    <message>
        <source>About</source>
        <translation>バージョン情報</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>画像なし</translation>
    </message>
    <message>
        <source>Cannot open %1</source>
        <translation>%1 を開けません</translation>
    </message>
    <message>
        <source>Crop</source>
        <translation>切り抜き</translation>
    </message>
    <message>
        <source>Open a picture</source>
        <translation>画像を開く</translation>
    </message>
    <message>
        <source>Rotate the picture?</source>
        <translation>画像を回転しますか？</translation>
    </message>
    <message>
        <source>Save the picture</source>
        <translation>画像を保存</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>%1 を保存しました</translation>
    </message>
    <message>
        <source>Export the corrected picture to</source>
        <translation>補正した画像の書き出し先</translation>
    </message>
    <message>
        <source>Correcting %1</source>
        <translation>%1 を補正中</translation>
    </message>
    <message>
        <source>Writing %1</source>
        <translation>%1 を書き込み中</translation>
    </message>
    <message>
        <source>Cannot save %1</source>
        <translation>%1 を保存できません</translation>
    </message>
    <message>
        <source>Reset all corrections?</source>
        <translation>すべての補正をリセットしますか？</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>リセット</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>補正</translation>
    </message>
    <message>
        <source>Save changes to %1?</source>
        <translation>%1 への変更を保存しますか？</translation>
    </message>
    <message>
        <source>Cannot import %1</source>
        <translation>%1 を読み込めません</translation>
    </message>
    <message>
        <source>It is not a ZIP archive.</source>
        <translation>ZIP アーカイブではありません。</translation>
    </message>
    <message>
        <source>It would write outside its folder.</source>
        <translation>フォルダーの外に書き込もうとしています。</translation>
    </message>
    <message>
        <source>It contains something that cannot be unpacked here.</source>
        <translation>展開できない項目が含まれています。</translation>
    </message>
    <message>
        <source>It would become too large.</source>
        <translation>展開すると大きくなりすぎます。</translation>
    </message>
    <message>
        <source>It is damaged.</source>
        <translation>アーカイブが壊れています。</translation>
    </message>
    <message>
        <source>Its files cannot be written.</source>
        <translation>ファイルを書き込めません。</translation>
    </message>
    <message>
        <source>Export as &amp;ZIP…</source>
        <translation>ZIP として書き出し(&amp;Z)…</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>読み込み(&amp;I)…</translation>
    </message>
    <message>
        <source>Show in File &amp;Manager</source>
        <translation>ファイルマネージャーで表示(&amp;M)</translation>
    </message>
    <message>
        <source>Move to &amp;Trash…</source>
        <translation>ゴミ箱に移動(&amp;T)…</translation>
    </message>
    <message>
        <source>Export the corrected picture with its settings</source>
        <translation>補正した画像を設定とともに書き出し</translation>
    </message>
    <message>
        <source>Import an archive</source>
        <translation>アーカイブを読み込む</translation>
    </message>
    <message>
        <source>Unpacking %1</source>
        <translation>%1 を展開中</translation>
    </message>
    <message>
        <source>No picture in %1</source>
        <translation>%1 に画像がありません</translation>
    </message>
    <message>
        <source>Move %1 to the trash?</source>
        <translation>%1 をゴミ箱に移動しますか？</translation>
    </message>
    <message>
        <source>There is no trash for %1</source>
        <translation>%1 に使えるゴミ箱がありません</translation>
    </message>
    <message>
        <source>Cannot move %1 to the trash</source>
        <translation>%1 をゴミ箱に移動できません</translation>
    </message>
</context>
<context>
    <name>PictureArchive</name>
    <message>
        <source>ZIP archives</source>
        <translation>ZIP アーカイブ</translation>
    </message>
</context>
<context>
    <name>PictureDescription</name>
    <message>
        <source>Created %1</source>
        <translation>作成日時: %1</translation>
    </message>
</context>
<context>
    <name>PictureFile</name>
    <message>
        <source>Pictures</source>
        <translation>画像</translation>
    </message>
</context>
<context>
    <name>PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>環境設定</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>言語</translation>
    </message>
    <message>
        <source>Units</source>
        <translation>単位</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>ピクセル</translation>
    </message>
    <message>
        <source>Inches</source>
        <translation>インチ</translation>
    </message>
    <message>
        <source>Centimetres</source>
        <translation>センチメートル</translation>
    </message>
    <message>
        <source>Millimetres</source>
        <translation>ミリメートル</translation>
    </message>
    <message>
        <source>Show the image size</source>
        <translation>画像サイズを表示</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Mac free space drive message</source>
        <translation>システムディスクの空き容量が不足しているため、Vek Marlowick 3 を起動できません。</translation>
    </message>
    <message>
        <source>Out of memory. Program will be closed.</source>
        <translation>使用可能なメモリが不足しているため、Vek Marlowick 3 を終了します。
ほかのプログラムをいくつか終了してから、Vek Marlowick 3 をもう一度起動してください。</translation>
    </message>
    <message>
        <source>%1 has run out of memory. The application may now become unstable. Please close %2 and Photoshop, quit all other programs running, and try again.</source>
        <translation>%1 のメモリが不足しています。アプリケーションが不安定になる可能性があります。%2 と Photoshop を閉じ、実行中のほかのプログラムをすべて終了してから、もう一度お試しください。</translation>
    </message>
    <message>
        <source>Unhandled exception. Program will be closed.</source>
        <translation>処理されない例外が発生したため、Vek Marlowick 3 を終了します。</translation>
    </message>
    <message>
        <source>px</source>
        <translation>px</translation>
    </message>
    <message>
        <source>in</source>
        <translation>インチ</translation>
    </message>
    <message>
        <source>cm</source>
        <translation>cm</translation>
    </message>
    <message>
        <source>mm</source>
        <translation>mm</translation>
    </message>
    <message>
        <source>B</source>
        <translation>B</translation>
    </message>
    <message>
        <source>KB</source>
        <translation>KB</translation>
    </message>
    <message>
        <source>MB</source>
        <translation>MB</translation>
    </message>
</context>
<context>
    <name>ToolPanel</name>
    <message>
        <source>Title</source>
        <translation>タイトル</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>名称未設定</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>補正</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>リセット</translation>
    </message>
    <message>
        <source>Horizon</source>
        <translation>水平</translation>
    </message>
    <message>
        <source>Distortion</source>
        <translation>ゆがみ</translation>
    </message>
    <message>
        <source>Keystone</source>
        <translation>台形補正</translation>
    </message>
    <message>
        <source>Crop empty corners</source>
        <translation>四隅の余白を切り落とす</translation>
    </message>
    <message>
        <source>Show grid</source>
        <translation>グリッドを表示</translation>
    </message>
    <message>
        <source>Save…</source>
        <translation>保存…</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>書き出し…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
</context>
<context>
    <name>aboutDlg</name>
    <message>
        <source>About %1</source>
        <translation>%1 について</translation>
    </message>
    <message>
        <source>&#x2003;&#x2003;Copyright © Vek Labs. All rights reserved.</source>
        <translation>&#x2003;&#x2003;Copyright © Vek Labs. 無断複写・転載を禁じます。</translation>
    </message>
    <message>
        <source>Straight lines, true shapes</source>
        <translation>まっすぐな線、正しい形</translation>
    </message>
    <message>
        <source>Vek Marlowick 3</source>
        <translation>Vek Marlowick 3</translation>
    </message>
    <message>
        <source>&lt;a href=&quot;%1&quot;&gt;&lt;span style=&quot;text-decoration: underline; color:#747474;&quot;&gt;Visit the Vek home page&lt;/span&gt;&lt;/a&gt;</source>
        <translation>&lt;a href=&quot;%1&quot;&gt;&lt;span style=&quot;text-decoration: underline; color:#747474;&quot;&gt;Vek のホームページへ&lt;/span&gt;&lt;/a&gt;</translation>
    </message>
    <message>
        <source>%1 and its logos are trademarks of Vek Labs. This program is protected by copyright law and by international treaties. It may be copied and passed on, as a whole or in part, only as its licence allows.&lt;br&gt;&lt;br&gt;It contains software, fonts and data made by others, to which their own terms apply.&lt;br&gt;&lt;br&gt;</source>
        <translation>%1 とそのロゴは Vek Labs の商標です。本プログラムは著作権法および国際条約によって保護されています。全部または一部の複製や配布は、使用許諾で認められた範囲に限られます。&lt;br&gt;&lt;br&gt;本プログラムには第三者のソフトウェア、フォント、データが含まれており、それぞれの条件が適用されます。&lt;br&gt;&lt;br&gt;</translation>
    </message>
</context>
</TS>
