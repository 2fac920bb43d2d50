" SPDX-FileCopyrightText: 2026 The Quillet authors
" SPDX-License-Identifier: MIT
"
" Answers the questions in the file $ORACLE_QUESTIONS, one JSON object a line, by a line each in $ORACLE_ANSWERS. oracle.py starts Vim for it.
"
" A question has "file", the lines of a file as readfile() has them in binary mode, "line" and "column" (bytes, from 1) of the cursor, and
" "keys". An answer has "lines", "hasEnd" (the last line is terminated; not so for no lines at all), "mode",
" "head" and "anchor" as [line, column], "registers". "isUnfinished": the keys end within a command, which was cancelled to get the answer.
"
" Nothing here is in a :try, which would take the errors that the keys run into, and with them the keys that follow.

" Where modes are shown Vim waits for seconds, so that errors can be read first.
set noshowmode noshowcmd noruler
set encoding=utf-8 noswapfile nobackup nowritebackup nofsync hidden viminfo= nomodeline nomore shortmess+=sAIF lazyredraw
set fileformats=unix,dos nofixendofline belloff=all report=9999 timeoutlen=0 ttimeoutlen=0 lines=21 columns=200
let s:options = 'tabstop=4 shiftwidth=4 softtabstop=0 expandtab autoindent backspace=indent,eol,start nojoinspaces startofline wrapscan'
  \ . ' noignorecase nosmartcase nogdefault textwidth=0 nrformats=bin,hex scrolloff=0 sidescrolloff=0 nohlsearch noincsearch magic'
  \ . ' virtualedit= selection=inclusive whichwrap=b,s matchpairs=(:),{:},[:] undolevels=1000 cpoptions=aABceFs wildmode='
let s:names = split('"0123456789-abcz', '\zs')
" Keys that are no characters in Vim either.
let s:codes = {"\x7f": "\<BS>", "\uf700": "\<Up>", "\uf701": "\<Down>", "\uf702": "\<Left>", "\uf703": "\<Right>", "\uf728": "\<Del>",
  \ "\uf729": "\<Home>", "\uf72b": "\<End>", "\uf72c": "\<PageUp>", "\uf72d": "\<PageDown>"}
let s:file = $ORACLE_ANSWERS . '.text'

function! s:Registers()
  let all = {}
  for name in s:names
    let info = getreginfo(name)
    if has_key(info, 'regcontents') && (info.regcontents != [''] || info.regtype !=# 'v') && !empty(info.regcontents)
      let all[name] = [info.regtype[0], info.regcontents]
    endif
  endfor
  return all
endfunction

function! s:State()
  " In a text of no lines there is a line for the cursor.
  let isEmpty = wordcount().bytes == 0
  return {'mode': mode(1), 'head': getpos('.')[1:2], 'anchor': getpos('v')[1:2], 'lines': isEmpty ? [] : getline(1, '$'),
    \ 'hasEnd': &l:endofline && !isEmpty, 'registers': s:Registers()}
endfunction

" Bound to a key that no question has, so that the state is looked at before Vim leaves a mode because there are no more keys. With <Cmd>,
" as an expression would be evaluated when the insert mode only looks at what the next key is.
function! Look()
  let s:state = s:State()
endfunction

function! NoChange(kind)
endfunction

" Where somebody listens to letters, those that are all there already are inserted one by one, as when they are typed.
autocmd InsertCharPre * let g:letter = v:char

" Vim as it was at its start, as far as questions change it.
function! s:Reset()
  silent! %bwipeout!
  silent! mapclear | silent! mapclear! | silent! abclear | silent! unlet g:mapleader
  noremap <F12> <Cmd>call Look()<CR>
  noremap! <F12> <Cmd>call Look()<CR>
  exe 'set ' . s:options
  delmarks A-Z0-9
  " What was changed and typed last cannot be forgotten, only be something else.
  silent! exe "normal! i\<Esc>"
  set operatorfunc=NoChange
  silent! exe 'normal! g@$'
  silent! s/\%^no such text\%$//
  for name in s:names
    call setreg(name, [])
  endfor
  silent! normal! @z
  let @/ = ''
  call setcharsearch({'char': "\x02", 'forward': 1, 'until': 0})
  call histdel(':') | call histdel('/')
endfunction

function! s:Prepare(question)
  call s:Reset()
  call writefile(a:question.file, s:file, 'b')
  silent exe 'edit' s:file
  if a:question.file == ['']
    " What is typed into an empty text gets no line end of its own.
    setlocal noendofline
  endif
  clearjumps
  setlocal undolevels=1000
  call cursor(a:question.line, a:question.column)
  let s:state = {}
  let s:keys = join(map(split(a:question.keys, '\zs'), 'get(s:codes, v:val, v:val)'), '') . "\<F12>\<C-\>\<C-n>"
endfunction

function! s:Answer()
  let answer = s:state
  if empty(answer)
    let answer = s:State()
    let answer.isUnfinished = v:true
  endif
  if !empty(reg_recording())
    normal! q
  endif
  return answer
endfunction

for s:line in readfile($ORACLE_QUESTIONS)
  call s:Prepare(json_decode(s:line))
  " Not in a function, where variables that the keys set would be its own. Silent, so that nothing waits for a key, but not with "!", which
  " would take the failures. A failure is what assert_fails() expects, so Vim does not wait a second for somebody to read it.
  silent call assert_fails('call feedkeys(s:keys, "tx")')
  let v:errors = []
  call writefile([json_encode(s:Answer())], $ORACLE_ANSWERS, 'a')
endfor
qall!
