: package worker
= kkkkkkk
:
: import (
= kkkkkk
: 	"context"
= 	sssssssss
: 	"fmt"
= 	sssss
: )
:
: /* A pool runs jobs.
= ccccccccccccccccccccc
:    The channel "jobs" is closed by Stop(). */
= ccccccccccccccccccccccccccccccccccccccccccccc
: type Pool struct {
= kkkk tttt kkkkkk
: 	jobs  chan func() error
= 	      kkkk kkkk   ttttt
: 	size  int32
= 	      ttttt
: 	names map[string]uint8
= 	      kkk tttttt ttttt
: 	any   interface{ Run() }
= 	ttt   kkkkkkkkk  fff
: }
:
: const (
= kkkkk
: 	Limit = 0x7f + 1_000
= 	ttttt   nnnn   nnnnn
: 	Ratio = 1.5e-3
= 	ttttt   nnnnnn
: 	Mode  = 0o644
= 	tttt    nnnnn
: 	first = iota
= 	        bbbb
: )
:
: // usage is shown as it stands.
= ccccccccccccccccccccccccccccccc
: var usage = `usage: worker [options]
= kkk         sssssssssssssssssssssssss
:   "quoted" // not a comment
= ssssssssssssssssssssssssssss
: `
= s
:
: func NewPool(ctx context.Context, size int) (*Pool, error) {
= kkkk fffffff             ttttttt       ttt    tttt  ttttt
: 	if size <= 0 {
= 	kk         n
: 		return nil, fmt.Errorf("size %d is \"odd\"", size)
= 		kkkkkk bbb      ffffff ssssssssssssssssssss
: 	}
: 	p := &Pool{jobs: make(chan func() error, size), names: map[string]uint8{"a": 'a', "nl": '\n', "q": '\''}}
= 	      tttt       bbbb kkkk kkkk   ttttt                kkk tttttt ttttt sss  sss  ssss  ssss  sss  ssss
: 	for i := range size {
= 	kkk      kkkkk
: 		go p.run(ctx, i)
= 		kk   fff
: 	}
: 	defer close(p.jobs)
= 	kkkkk bbbbb
: 	return p, nil
= 	kkkkkk    bbb
: }
:
: func (p *Pool) run(ctx context.Context, id int) {
= kkkk     tttt  fff             ttttttt     ttt
: 	for {
= 	kkk
: 		select {
= 		kkkkkk
: 		case job, ok := <-p.jobs:
= 		kkkk
: 			if !ok || job == nil {
= 			kk               bbb
: 				break
= 				kkkkk
: 			}
: 			if err := job(); err != nil {
= 			kk        fff           bbb
: 				panic(err)
= 				bbbbb
: 			}
: 			continue
= 			kkkkkkkk
: 		case <-ctx.Done():
= 		kkkk       ffff
: 			goto done
= 			kkkk
: 		default:
= 		kkkkkkk
: 			println(len(p.names), cap(p.jobs), true)
= 			bbbbbbb bbb           bbb          bbbb
: 		}
: 	}
: done:
: 	var c complex128 = complex(1, 2)
= 	kkk   tttttttttt   fffffff n  n
: 	_ = append([]rune{}, rune(real(c)), '世')
= 	    bbbbbb   tttt    tttt ffff      sss
: 	delete(p.names, "a")
= 	bbbbbb          sss
: }
:
