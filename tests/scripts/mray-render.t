# SPDX-License-Identifier: Apache-2.0
# mray-render by itself: pictures that grow, and requests to one that stays.
use strict;
use warnings;
use Cwd 'abs_path';
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use LiveTest qw(ends until_true);
use PictureTest qw(difference picture);
use ScriptTest qw(get put run);
use POSIX ();
use Test::More;

my $programs = $ENV{MRAY_RENDER};
plan skip_all => 'MRAY_RENDER names no directory' if !defined $programs;
my $program = "$programs/mray-render";
my $dir = abs_path(tempdir(CLEANUP => 1));
delete @ENV{grep { /^TAVRN_|^MRAY_/ } keys %ENV};
my $prelude = get("$FindBin::Bin/../../installation/mray/glsl/surface.glsl");

# A shader, whose main is given.
sub shader {
	my ($name, $main, $head) = @_;
	return put("$dir/$name.frag", "#version 330 core\n" . ($head // '') . "${prelude}void main()\n{\n$main\n}\n");
}

my $plain = shader('plain', 'tvColor = vec4(tvLambert(normalize(tvNormal), tvPosition), 1.0);');
my $slow = shader('slow', "float sum = 0.0;\nfor (int i = 0; i < 2000; i++) sum += sin(float(i) * tvUV.x);\n"
	. 'tvColor = vec4(vec3(0.5 + 0.01 * sum), 1.0);');

subtest 'a picture grows' => sub {
	my ($picture, $part) = ("$dir/grown.png", "$dir/growing.png");
	my $pid = fork // die;
	if (!$pid) {
		open STDOUT, '>', '/dev/null';
		exec $program, '--quiet', '--size', '300x3000', '--samples', '16', '--part', $part, $slow, $picture;
	}
	my @seen;
	my $grows = until_true(sub {
		my $bytes = get($part) // '';
		return 1 if waitpid($pid, POSIX::WNOHANG()) == $pid;
		return 0 if length $bytes < 60;
		my $rows = (picture($bytes))[2];
		push @seen, $rows if @$rows && @$rows < 3000 && (!@seen || @$rows > @{ $seen[-1] });
		return @seen >= 3;
	});
	ok($grows && @seen >= 3, 'row by row') or diag scalar @seen;
	is_deeply([@{ $seen[2] }[0 .. $#{ $seen[0] }]], $seen[0], 'from the top');
	ok(!-e $picture, 'aside of its name');
	kill 'TERM', $pid;
	waitpid $pid, 0;
	unlink $part;

	is((run($program, '--quiet', '--size', '30x40', '--part', $part, $plain, $picture))[0], 0, 'when it is done');
	is(scalar @{ (picture(get($picture)))[2] }, 40, 'it has its name');
	ok(!-e $part, 'and no other');
	put($part, 'mine');
	my ($status, undef, $err) = run($program, '--quiet', '--part', $part, $plain, "$dir/other.png");
	is($status, 1, 'a file that is there');
	like($err, qr{^mray-render: cannot write \Q$dir\E/other\.png: File exists$}m, 'is none to grow in');
	is(get($part), 'mine', 'and stays');
	unlink $part;
	for my $case ([1, put("$dir/bad.frag", 'oops')], [3, $plain, TAVRN_KILLFILE => $plain]) {
		my ($wanted, $shader, %set) = @$case;
		local @ENV{keys %set} = values %set;
		is((run($program, '--quiet', '--part', $part, $shader, "$dir/other.png"))[0], $wanted, "status $wanted");
		is_deeply([grep { -e } glob "$dir/other* $part*"], [], 'leaves nothing');
	}
	is((run($program, '--part', '', $plain, $picture))[0], 2, 'it has some name');
};

subtest 'a block of values' => sub {
	my $shader = shader('valued', 'tvColor = vec4(more.xyz * amount, 1.0);',
		"layout(std140) uniform mrValues {\nfloat amount;\nvec4 more;\n};\n");
	my $same = shader('same', 'tvColor = vec4(vec3(0.2, 0.4, 0.6) * 0.5, 1.0);');
	put("$dir/values", "0.5 9 9 9\n0.2 0.4 0.6 1e999\n");
	run($program, '--quiet', '--size', '40x30', '--values', "$dir/values", $shader, "$dir/valued.png");
	run($program, '--quiet', '--size', '40x30', $same, "$dir/same.png");
	is_deeply([difference(get("$dir/valued.png"), get("$dir/same.png"))], [0, 0], 'is filled from a file');
	for my $bad ('1 x', '1,2', '0x', join(' ', (1) x 4097)) {
		put("$dir/values", $bad);
		my ($status, undef, $err) = run($program, '--quiet', '--values', "$dir/values", $shader, "$dir/valued.png");
		is($status, 1, substr($bad, 0, 10) . ' is refused');
		like($err, qr{the values \Q$dir\E/values are not at most 4096 numbers; write them again}, 'and told');
	}
	my ($status, undef, $err) = run($program, '--quiet', '--values', "$dir/none", $shader, "$dir/valued.png");
	like($err, qr{cannot read the values \Q$dir\E/none; check the file name}, 'so is a file that is not there');
	put("$dir/values", '0.5');
	is((run($program, '--quiet', '--size', '40x30', '--values', "$dir/values", $shader, "$dir/valued.png"))[0], 0, 'what is missing is 0');
};

my $live = LiveTest->start("$dir/errors", $program, '--live');
is($live->line, 'ready', 'one that stays tells that it is ready');
my $small = '--size 40x30 --samples 1';

subtest 'requests' => sub {
	$live->say("draw a $small $plain $dir/a.png");
	is_deeply([$live->answer], ['program a new', 'picture a'], 'a shader is compiled');
	$live->say("draw b $small $plain $dir/b.png");
	is_deeply([$live->answer], ['program b kept', 'picture b'], 'and kept');
	is_deeply([difference(get("$dir/a.png"), get("$dir/b.png"))], [0, 0], 'the pictures are the same');
	run($program, '--quiet', '--size', '40x30', '--samples', '1', $plain, "$dir/c.png");
	is_deeply([difference(get("$dir/a.png"), get("$dir/c.png"))], [0, 0], 'as one of its own');
	put("$dir/an odd % name.frag", get($plain));
	$live->say("draw 7 $small $dir/an%20odd%20%25%20name.frag $dir/%64.png");
	is(($live->answer)[-1], 'picture 7', 'words can hold anything');
	ok(-s "$dir/d.png", 'as file names do');
	$live->say("draw 8 $small --timing $plain $dir/a.png");
	like(join("\n", $live->answer), qr/^times 8 start [\d.]+, .*draw [\d.]+.* ms$/m, 'times are told');
};

subtest 'bad requests' => sub {
	for my $case (['', 'failed - a request is: draw '], ['draw', 'failed - a request is'], ['paint 1 a b', 'failed - '],
			['draw 1', 'failed 1 give two file names'], ['draw 2 --nope a b', 'failed 2 unknown option --nope'],
			['draw 3 --live', 'failed 3 --help, --version and --live'], ['draw 4 a%2 b', 'failed 4 the word a%2'],
			['draw 5 a%zz b', 'failed 5 the word a%zz'], ["draw 6 $dir/none $dir/x.png", 'failed 6 cannot read the shader'],
			["draw 7 $plain $dir/none/x.png", 'failed 7 cannot write into'], ["draw 8 $plain $dir", 'failed 8 cannot write'],
			["draw 9 --size 9999,1 $plain $dir/x.png", 'failed 9 --size']) {
		my ($line, $answer) = @$case;
		$live->say($line);
		like(($live->answer)[-1] // '', qr/^\Q$answer\E/, $line);
	}
	put("$dir/bad.frag", "#version 330 core\nout vec4 c;\nvoid main() { c = oops; }\n");
	$live->say("draw 1 $dir/bad.frag $dir/x.png");
	my @lines = $live->answer;
	like($lines[0], qr{^say 1 \Q$dir\E/bad\.frag:3: .*oops}, 'what the compiler says is told');
	is($lines[-1], 'refused 1', 'and that it refuses');
	ok(!-e "$dir/x.png", 'there is no picture');
	put("$dir/alone.frag", "#version 330 core\nin vec2 tvUV;\nin vec3 tvNormal;\nout vec4 c;\nvoid main() { c = vec4(tvUV, tvNormal.x, 1.0); }\n");
	$live->say("draw 2 $small $dir/alone.frag $dir/x.png");
	is(($live->answer)[-1], 'picture 2', 'a shader that takes in less than there is');
	run($program, '--quiet', '--size', '40x30', '--samples', '1', "$dir/alone.frag", "$dir/y.png");
	is_deeply([difference(get("$dir/x.png"), get("$dir/y.png"))], [0, 0], 'shows what it shows alone');
};

subtest 'a newer line' => sub {
	my $large = '--size 1200x900 --samples 16';
	$live->say("draw 1 $large --coarse $dir/coarse.png $slow $dir/fine.png");
	my $line = '';
	until_true(sub { ($line = $live->line // 'end') =~ /^(?:coarse|end)/ });
	is($line, 'coarse 1', 'comes when the coarse picture is there');
	is(scalar @{ (picture(get("$dir/coarse.png")))[2] }, 900, 'which is as large as the fine one');
	$live->say('stop');
	is(($live->answer)[-1], 'dropped 1', 'it stops');
	ok(!-e "$dir/fine.png", 'the fine one');
	$live->say("draw 2 $large --coarse $dir/coarse.png $slow $dir/fine.png", "draw 3 $small $plain $dir/a.png");
	my @lines = $live->answer;
	is(scalar(grep { $_ eq 'coarse 2' } @lines), 1, 'one that comes at once leaves the coarse picture');
	is($lines[-1], 'dropped 2', 'and drops the fine one');
	is(($live->answer)[-1], 'picture 3', 'then it is drawn');
};

subtest 'ends' => sub {
	is($live->finish, 0, 'with its input');
	my $other = LiveTest->start("$dir/errors", $program, '--live');
	syswrite $other->{to}, "draw 1 $small";
	is($other->finish, 0, 'in a line, too');
	$other = LiveTest->start("$dir/long", $program, '--live');
	$other->say('x' x 100_000);
	is($other->finish, 1, 'a line without an end');
	like(get("$dir/long"), qr/^mray-render: a request is longer than 65536 bytes/m, 'is told');
	local $ENV{TAVRN_KILLFILE} = $plain;
	$other = LiveTest->start("$dir/errors", $program, '--live');
	$other->line;
	$other->say("draw 1 $small $plain $dir/a.png");
	is(($other->answer)[-1], 'failed 1 stopped', 'the file that stops renders stops this one');
	is($other->finish, 0, 'which stays until its input ends');
	is((run($program, '--live', 'a', 'b'))[0], 2, 'files on the command line are refused');
	is(get("$dir/errors"), '', 'nothing else was said');
};

done_testing;
